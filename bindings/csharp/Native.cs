// The raw declarations: what temz.h says. Enumerations and records bear the header's names as C# writes
// them; a newer library may give numbers that aren't named here.

using System;
using System.Runtime.InteropServices;
using Microsoft.Win32.SafeHandles;

namespace Temz
{
    /// <summary>What a function answers.</summary>
    public enum Status
    {
        Ok = 0, RunFailed = 1, Stopped = 2, LoadFailed = 3, NotFound = 4, BufferTooSmall = 5, NoMemory = 6,
        NullArgument = 7, BadContext = 8, BadSize = 9, BadMode = 10, NotLoaded = 11, AlreadyLoaded = 12,
        InCallback = 13, Busy = 14, VersionMismatch = 15, Internal = 16, NotReadable = 17, BadValue = 18
    }

    /// <summary>What a run does with the product.</summary>
    public enum Mode { Install = 0, Uninstall = 1, Upgrade = 2 }

    /// <summary>Whether a run goes on.</summary>
    public enum Next { Continue = 0, Stop = 1 }

    /// <summary>What becomes of a vital action that has failed.</summary>
    public enum Decision { Retry = 0, Abort = 1, Ignore = 2 }

    /// <summary>What is done, or has failed.</summary>
    public enum Code : uint
    {
        ErrorMessage = 1, ActionCondition = 2, ActionCopyFile = 3, ActionDeleteFile = 4,
        ActionStopService = 5, ActionStartService = 6, ActionRemoveService = 7, ActionShortcut = 8,
        ErrorRemoveShortcut = 9, ActionCustomAction = 10, ActionShellExcute = 11,
        ActionCreateRegistryKey = 12, ActionRemoveRegistryKey = 13, ActionRegistryValue = 14,
        ActionRemoveDirectory = 15, ActionCaution = 16
    }

    /// <summary>How much a finding weighs.</summary>
    public enum Severity { Error = 0, Warning = 1, Note = 2 }

    /// <summary>What a step of a plan tells.</summary>
    public enum StepKind : uint
    {
        Group = 1, Element = 2, Condition = 3, Search = 4, Action = 5, Change = 6, Failure = 7, LeftOut = 8
    }

    /// <summary>What changes: the code of a step of this kind.</summary>
    public enum Change : uint
    {
        FileAdded = 1, FileReplaced = 2, FileRemoved = 3, FileAtRestart = 4, Attributes = 5,
        DirectoryAdded = 6, DirectoryRemoved = 7, KeyAdded = 8, KeyRemoved = 9, ValueSet = 10,
        ServiceStarted = 11, ServiceStopped = 12, ServiceRemoved = 13, ServiceChanged = 14,
        LinkWritten = 15, ProcessEnded = 16, ProgramStarted = 17, LibraryLoaded = 18, ActionCalled = 19
    }

    /// <summary>What a failure means to a run.</summary>
    public enum Fate : uint { Vital = 0, NotVital = 1, EndsRun = 2 }

    /// <summary>The action that is about to be carried out, or was the last.</summary>
    [StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]
    public struct Action
    {
        public Code Code;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = Native.TextLength)] public string Text1;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = Native.TextLength)] public string Text2;
    }

    /// <summary>The last failure.</summary>
    [StructLayout(LayoutKind.Sequential, CharSet = CharSet.Unicode)]
    public struct Error
    {
        public Code Code;
        public uint SystemError;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = Native.TextLength)] public string Text1;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = Native.TextLength)] public string Text2;
        [MarshalAs(UnmanagedType.ByValTStr, SizeConst = Native.TextLength)] public string Message;
    }

    /// <summary>What a run has come to.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Outcome
    {
        internal uint Size;
        public int Result;
        [MarshalAs(UnmanagedType.Bool)] public bool Restart;
        public uint Progress;
        public Action Action;
        public Error Error;
    }

    /// <summary>One call to the system, or a line of the engine's log.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Call
    {
        internal uint Size;
        [MarshalAs(UnmanagedType.Bool)] public bool Failed;
        public uint SystemError;
        internal uint ArgumentCount;
        [MarshalAs(UnmanagedType.LPWStr)] public string Group;
        [MarshalAs(UnmanagedType.LPWStr)] public string Name;
        internal IntPtr Arguments;
        [MarshalAs(UnmanagedType.LPWStr)] public string Result;
        public ulong Duration;
        [MarshalAs(UnmanagedType.Bool)] public bool Changes;
    }

    /// <summary>One thing that is wrong with a script.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Finding
    {
        internal uint Size;
        public Severity Severity;
        [MarshalAs(UnmanagedType.Bool)] public bool EndsRun;
        public uint Line;
        public uint Column;
        public uint Length;
        [MarshalAs(UnmanagedType.LPWStr)] public string Code;
        [MarshalAs(UnmanagedType.LPWStr)] public string File;
        [MarshalAs(UnmanagedType.LPWStr)] public string Text;
        [MarshalAs(UnmanagedType.LPWStr)] public string Help;
        [MarshalAs(UnmanagedType.LPWStr)] public string SourceLine;
    }

    /// <summary>One step of a plan. What has no meaning for its kind is 0 or empty.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Step
    {
        internal uint Size;
        public StepKind Kind;
        public uint Depth;
        public uint Line;
        [MarshalAs(UnmanagedType.LPWStr)] public string Element;
        [MarshalAs(UnmanagedType.LPWStr)] public string Id;
        [MarshalAs(UnmanagedType.LPWStr)] public string Object;
        [MarshalAs(UnmanagedType.LPWStr)] public string Detail;
        [MarshalAs(UnmanagedType.LPWStr)] public string Before;
        [MarshalAs(UnmanagedType.LPWStr)] public string After;
        [MarshalAs(UnmanagedType.LPWStr)] public string Message;
        public ulong Bytes;
        public ulong BytesBefore;
        /// <summary>A <see cref="Change"/> or a <see cref="Temz.Code"/>, as the kind has it.</summary>
        public uint Code;
        public uint SystemError;
        [MarshalAs(UnmanagedType.Bool)] public bool Holds;
        public Fate Fate;
        [MarshalAs(UnmanagedType.Bool)] public bool SameContent;
        [MarshalAs(UnmanagedType.Bool)] public bool Unforeseeable;
        public uint Elements;
        public uint Files;
    }

    /// <summary>A variable that a plan finds with another value than the script has.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct Assumption
    {
        [MarshalAs(UnmanagedType.LPWStr)] public string Name;
        [MarshalAs(UnmanagedType.LPWStr)] public string Value;
    }

    /// <summary>What is known about a code of findings.</summary>
    [StructLayout(LayoutKind.Sequential)]
    public struct FindingKind
    {
        internal uint Size;
        public Severity Severity;
        private IntPtr code;
        private IntPtr meaning;
        private IntPtr remedy;
        public string Code { get { return Marshal.PtrToStringUni(code); } }
        public string Meaning { get { return Marshal.PtrToStringUni(meaning); } }
        public string Remedy { get { return Marshal.PtrToStringUni(remedy); } }
    }

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate void Tell(IntPtr user, IntPtr record);

    [UnmanagedFunctionPointer(CallingConvention.Cdecl)]
    internal delegate int Ask(IntPtr user, IntPtr record);

    [StructLayout(LayoutKind.Sequential)]
    internal struct ObserverRecord
    {
        internal uint Size;
        internal IntPtr User;
        internal Ask Update;
        internal Ask Ask;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct TracerRecord
    {
        internal uint Size;
        internal IntPtr User;
        internal Tell Call;
        internal Ask Permit;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct CheckRequest
    {
        internal uint Size;
        [MarshalAs(UnmanagedType.LPWStr)] internal string Script;
        [MarshalAs(UnmanagedType.LPWStr)] internal string Payload;
        [MarshalAs(UnmanagedType.LPWStr)] internal string Previous;
        internal IntPtr User;
        internal Tell Finding;
    }

    [StructLayout(LayoutKind.Sequential)]
    internal struct Planner
    {
        internal uint Size;
        internal uint AssumptionCount;
        internal IntPtr Assumptions;
        internal IntPtr User;
        internal Tell Step;
    }

    /// <summary>A context of the library, which is freed in any case.</summary>
    internal sealed class ContextHandle : SafeHandleZeroOrMinusOneIsInvalid
    {
        private ContextHandle() : base(true) { }

        protected override bool ReleaseHandle()
        {
            return Native.temz_free(handle) == Status.Ok;
        }
    }

    internal static class Native
    {
        internal const int TextLength = 512;
        internal const uint VersionMajor = 1, VersionMinor = 0, VersionPatch = 0;
        private const string Library = "TEMZC.dll";

        /// <summary>Loads the library by its whole path, so that no other of this name can take its place:
        /// once it is there, its name alone means it.</summary>
        static Native()
        {
            string path = System.IO.Path.Combine(AppDomain.CurrentDomain.BaseDirectory, Library);
            if (LoadLibraryW(path) == IntPtr.Zero)
                throw new DllNotFoundException(path + " can't be loaded.",
                    new System.ComponentModel.Win32Exception(Marshal.GetLastWin32Error()));
            TemzException.ThrowUnless(
                temz_check_version(VersionMajor << 24 | VersionMinor << 12 | VersionPatch));
        }

        [DllImport("kernel32.dll", CharSet = CharSet.Unicode, ExactSpelling = true, SetLastError = true)]
        private static extern IntPtr LoadLibraryW(string path);

        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern uint temz_version();
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_check_version(uint headerVersion);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern IntPtr temz_status_text(Status status);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_create(out ContextHandle context);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_free(IntPtr context);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode)]
        internal static extern Status temz_load(ContextHandle context, string path);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_unload(ContextHandle context);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_set_observer(ContextHandle context, ref ObserverRecord observer);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_set_observer(ContextHandle context, IntPtr none);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_set_tracer(ContextHandle context, ref TracerRecord tracer);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_set_tracer(ContextHandle context, IntPtr none);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_set_action_value(ContextHandle context, ulong value);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_run(ContextHandle context, Mode mode, ref Outcome outcome);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_plan(
            ContextHandle context, Mode mode, ref Planner planner, ref Outcome outcome);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_get_outcome(ContextHandle context, ref Outcome outcome);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode)]
        internal static extern Status temz_last_failure(
            ContextHandle context, [Out] char[] buffer, UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode)]
        internal static extern Status temz_get_variable(
            ContextHandle context, string name, [Out] char[] buffer, UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode)]
        internal static extern Status temz_get_directory(
            ContextHandle context, string id, [Out] char[] buffer, UIntPtr capacity, out UIntPtr length);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_check(ref CheckRequest request);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl)]
        internal static extern Status temz_get_finding_kind(uint index, ref FindingKind kind);
        [DllImport(Library, CallingConvention = CallingConvention.Cdecl, CharSet = CharSet.Unicode)]
        internal static extern Status temz_schema(
            [Out] char[] buffer, UIntPtr capacity, out UIntPtr length);
    }
}
