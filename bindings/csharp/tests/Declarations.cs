using System;
using System.Collections.Generic;
using System.IO;
using System.Linq;
using System.Reflection;
using System.Runtime.InteropServices;
using System.Text.RegularExpressions;
using Temz;

/// <summary>Holds the raw declarations against the header, the layout that C compilers agree on, the list
/// of exports, and the version of the project. It needs no Windows.</summary>
static class Declarations
{
    const BindingFlags Any = BindingFlags.Public | BindingFlags.NonPublic | BindingFlags.Instance |
                             BindingFlags.Static | BindingFlags.DeclaredOnly;
    static bool failed = false;

    static void ExpectSame(string what, IEnumerable<string> here, IEnumerable<string> there)
    {
        foreach (string line in here.Except(there))
            Tell(what + ", only here: " + line);
        foreach (string line in there.Except(here))
            Tell(what + ", not here: " + line);
    }

    static void Tell(string difference)
    {
        failed = true;
        Console.WriteLine(difference);
    }

    /// <summary>"AName" as "a_name".</summary>
    static string Snake(string name)
    {
        return Regex.Replace(name, "(?<=[a-z])[A-Z]", "_$0").ToLowerInvariant();
    }

    static string PrefixOf(Type type)
    {
        return type == typeof(StepKind) ? "TEMZ_STEP_"
             : type == typeof(Fate) ? "TEMZ_FAILURE_"
             : type == typeof(Severity) || type == typeof(Change) ? "TEMZ_" + type.Name.ToUpperInvariant() + "_"
             : "TEMZ_";
    }

    static IEnumerable<string> Constants(IEnumerable<Type> types)
    {
        yield return "TEMZ_TEXT_LENGTH " + Native.TextLength;
        foreach (Type type in types.Where(type => type.IsEnum))
            foreach (object value in Enum.GetValues(type))
                yield return PrefixOf(type) + Snake(value.ToString()).ToUpperInvariant() + " " +
                             Convert.ToInt64(value);
    }

    /// <summary>Where each field of each record lies, and how large each record is.</summary>
    static IEnumerable<string> Layout(IEnumerable<Type> types)
    {
        foreach (Type type in types.Where(type => type.IsValueType && !type.IsEnum && type.IsLayoutSequential))
        {
            string record = "temz_" + Snake(Regex.Replace(type.Name, "Record$", ""));
            foreach (FieldInfo field in type.GetFields(Any))
                yield return record + " " + Snake(field.Name) + " " + Marshal.OffsetOf(type, field.Name);
            yield return record + " " + Marshal.SizeOf(type);
        }
    }

    static IEnumerable<string> Matches(string text, string pattern)
    {
        foreach (Match match in Regex.Matches(text, pattern))
            yield return string.Join(" ", match.Groups.Cast<Group>().Skip(1).Select(group => group.Value));
    }

    /// <summary>The root of the project, and its version.</summary>
    static int Main(string[] arguments)
    {
        Func<string, string> read = name => File.ReadAllText(Path.Combine(arguments[0], name));
        Type[] types = typeof(Native).Assembly.GetTypes().Where(type => type.Namespace == "Temz").ToArray();
        string layout = read("tests/capi/Layout.c");

        ExpectSame("constants", Constants(types),
            Matches(read("capi/temz.h.in"), @"\b(TEMZ_[A-Z0-9_]+)[ ,=]+([0-9]+)"));
        ExpectSame("layout", Layout(types),
            Matches(layout, @" RECORD_FIELD\((\w+), (\w+), ([0-9]+), ")
                .Concat(Matches(layout, @" RECORD\((\w+), ([0-9]+), ")));
        ExpectSame("functions",
            typeof(Native).GetMethods(Any).Select(method => method.Name).Where(name => name.StartsWith("temz_")),
            Matches(read("capi/TEMZC.def"), @"(temz_\w+)"));
        ExpectSame("version",
            new[] { Native.VersionMajor + "." + Native.VersionMinor + "." + Native.VersionPatch },
            new[] { arguments[1] });
        return failed ? 1 : 0;
    }
}
