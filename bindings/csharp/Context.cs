// Installs, upgrades and removes what a script describes, by TEMZC.dll, which lies beside the program.

using System;
using System.Collections.Generic;
using System.Runtime.ExceptionServices;
using System.Runtime.InteropServices;

namespace Temz
{
    /// <summary>Another status than success.</summary>
    public sealed class TemzException : Exception
    {
        public readonly Status Status;
        /// <summary>Of a run or plan that has failed or was stopped: what it has come to.</summary>
        public readonly Outcome? Outcome;

        internal TemzException(Status status, string reason = "", Outcome? outcome = null)
            : base((Marshal.PtrToStringUni(Native.temz_status_text(status)) + " " + reason).TrimEnd())
        {
            Status = status;
            Outcome = outcome;
        }

        internal static void ThrowUnless(Status status)
        {
            if (status != Status.Ok)
                throw new TemzException(status);
        }
    }

    /// <summary>Who watches a run. Its functions are called on the thread of the run, and may ask the
    /// context. Any exception ends the run, and comes out of it again.</summary>
    public class Observer
    {
        /// <summary>An action is about to be carried out.</summary>
        public virtual Next Update(Outcome now) { return Next.Continue; }
        /// <summary>A vital action has failed.</summary>
        public virtual Decision Ask(Outcome now) { return Decision.Abort; }
    }

    /// <summary>Who wants to see every call to the system. What holds for an observer holds here.</summary>
    public class Tracer
    {
        /// <summary>A call has returned.</summary>
        public virtual void Call(Call call, string[] arguments) { }
        /// <summary>A call that changes something is about to be made.</summary>
        public virtual Next Permit(Call call, string[] arguments) { return Next.Continue; }
    }

    /// <summary>One engine object: at most one script, with its variables and its last outcome.</summary>
    public sealed class Context : IDisposable
    {
        private delegate Status Give(char[] buffer, UIntPtr capacity, out UIntPtr length);
        private readonly ContextHandle handle;

        public Context()
        {
            TemzException.ThrowUnless(Native.temz_create(out handle));
        }

        /// <summary>Frees the context; not from inside a callback, where the library keeps it.</summary>
        public void Dispose() { handle.Dispose(); }

        public void Load(string path) { Explain(Native.temz_load(handle, path)); }

        public void Unload() { TemzException.ThrowUnless(Native.temz_unload(handle)); }

        /// <summary>What custom actions find in their parameter record.</summary>
        public ulong ActionValue
        {
            set { TemzException.ThrowUnless(Native.temz_set_action_value(handle, value)); }
        }

        /// <summary>The state of the run that goes on, or the outcome of the last.</summary>
        public Outcome Outcome
        {
            get
            {
                Outcome outcome = EmptyOutcome();
                TemzException.ThrowUnless(Native.temz_get_outcome(handle, ref outcome));
                return outcome;
            }
        }

        public string LastFailure
        {
            get
            {
                string text;
                TemzException.ThrowUnless(Text((char[] buffer, UIntPtr capacity, out UIntPtr length) =>
                    Native.temz_last_failure(handle, buffer, capacity, out length), out text));
                return text;
            }
        }

        public string Variable(string name)
        {
            string text;
            Explain(Text((char[] buffer, UIntPtr capacity, out UIntPtr length) =>
                Native.temz_get_variable(handle, name, buffer, capacity, out length), out text));
            return text;
        }

        public string Directory(string id)
        {
            string text;
            Explain(Text((char[] buffer, UIntPtr capacity, out UIntPtr length) =>
                Native.temz_get_directory(handle, id, buffer, capacity, out length), out text));
            return text;
        }

        /// <summary>Carries out the script.</summary>
        public Outcome Run(Mode mode, Observer observer = null, Tracer tracer = null)
        {
            return Watched(new Watch(observer, tracer, null),
                (ref Outcome outcome) => Native.temz_run(handle, mode, ref outcome));
        }

        /// <summary>Does as a run does, but changes nothing, and tells each step.</summary>
        public Outcome Plan(Mode mode, Action<Step> step, Observer observer = null, Tracer tracer = null,
                            params Assumption[] assumptions)
        {
            Watch watch = new Watch(observer, tracer, step);
            int size = Marshal.SizeOf(typeof(Assumption));
            IntPtr records = Marshal.AllocHGlobal(size * assumptions.Length);
            int written = 0;
            try
            {
                for (; written < assumptions.Length; ++written)
                    Marshal.StructureToPtr(assumptions[written], records + written * size, false);
                Planner planner = new Planner
                {
                    Size = SizeOf<Planner>(), AssumptionCount = (uint)assumptions.Length,
                    Assumptions = records, Step = watch.StepTold
                };
                return Watched(watch, (ref Outcome outcome) =>
                    Native.temz_plan(handle, mode, ref planner, ref outcome));
            }
            finally
            {
                while (written-- > 0)
                    Marshal.DestroyStructure(records + written * size, typeof(Assumption));
                Marshal.FreeHGlobal(records);
            }
        }

        /// <summary>Tells all that is wrong with a script, and runs nothing.</summary>
        public static void Check(string script, Action<Finding> finding, string payload = null,
                                 string previous = null)
        {
            Exceptions exceptions = new Exceptions();
            CheckRequest request = new CheckRequest
            {
                Size = SizeOf<CheckRequest>(), Script = script, Payload = payload, Previous = previous,
                Finding = (user, record) => exceptions.Catch(0, () =>
                {
                    finding(Read<Finding>(record));
                    return 0;
                })
            };
            Status status = Native.temz_check(ref request);
            GC.KeepAlive(request.Finding);
            exceptions.Rethrow();
            TemzException.ThrowUnless(status);
        }

        /// <summary>All that a check can find.</summary>
        public static IEnumerable<FindingKind> FindingKinds()
        {
            for (uint index = 0;; ++index)
            {
                FindingKind kind = new FindingKind { Size = SizeOf<FindingKind>() };
                Status status = Native.temz_get_finding_kind(index, ref kind);
                if (status == Status.NotFound)
                    yield break;
                TemzException.ThrowUnless(status);
                yield return kind;
            }
        }

        /// <summary>The XML Schema of install scripts, to be saved as UTF-8.</summary>
        public static string Schema()
        {
            string text;
            TemzException.ThrowUnless(Text(Native.temz_schema, out text));
            return text;
        }

        /// <summary>The version of the library.</summary>
        public static Version LibraryVersion
        {
            get
            {
                uint version = Native.temz_version();
                return new Version((int)(version >> 24), (int)(version >> 12 & 0xFFF), (int)(version & 0xFFF));
            }
        }

        private delegate Status CarryOut(ref Outcome outcome);

        /// <summary>The library forgets the callbacks before they can be collected.</summary>
        private Outcome Watched(Watch watch, CarryOut carryOut)
        {
            Outcome outcome = EmptyOutcome();
            Status status;
            try
            {
                TemzException.ThrowUnless(Native.temz_set_observer(handle, ref watch.Observer));
                TemzException.ThrowUnless(watch.IsTraced
                    ? Native.temz_set_tracer(handle, ref watch.Tracer)
                    : Native.temz_set_tracer(handle, IntPtr.Zero));
                status = carryOut(ref outcome);
            }
            finally
            {
                Native.temz_set_observer(handle, IntPtr.Zero);
                Native.temz_set_tracer(handle, IntPtr.Zero);
                GC.KeepAlive(watch);
            }
            watch.Exceptions.Rethrow();
            if (status == Status.RunFailed || status == Status.Stopped)
                throw new TemzException(status, outcome.Error.Message, outcome);
            Explain(status);
            return outcome;
        }

        private void Explain(Status status)
        {
            if (status == Status.LoadFailed || status == Status.NotFound || status == Status.BadValue)
                throw new TemzException(status, LastFailure);
            TemzException.ThrowUnless(status);
        }

        private static Status Text(Give give, out string text)
        {
            char[] buffer = new char[Native.TextLength];
            UIntPtr length;
            Status status = give(buffer, (UIntPtr)buffer.Length, out length);
            while (status == Status.BufferTooSmall)
            {
                buffer = new char[(int)length];
                status = give(buffer, (UIntPtr)buffer.Length, out length);
            }
            text = status == Status.Ok ? new string(buffer, 0, (int)length - 1) : "";
            return status;
        }

        private static Outcome EmptyOutcome() { return new Outcome { Size = SizeOf<Outcome>() }; }

        internal static uint SizeOf<Record>() { return (uint)Marshal.SizeOf(typeof(Record)); }

        internal static Record Read<Record>(IntPtr record)
        {
            return (Record)Marshal.PtrToStructure(record, typeof(Record));
        }
    }

    /// <summary>The exceptions of the callbacks of one call to the library. From the first on, no callback
    /// is called any more.</summary>
    internal sealed class Exceptions
    {
        private ExceptionDispatchInfo first;

        internal int Catch(int end, Func<int> callback)
        {
            if (first != null)
                return end;
            try
            {
                return callback();
            }
            catch (Exception exception)
            {
                first = first ?? ExceptionDispatchInfo.Capture(exception);
                return end;
            }
        }

        internal void Rethrow()
        {
            if (first != null)
                first.Throw();
        }
    }

    /// <summary>What the library calls during one run. Both records are always complete, so that the run
    /// can be ended after an exception in any of them.</summary>
    internal sealed class Watch
    {
        internal readonly Exceptions Exceptions = new Exceptions();
        internal readonly bool IsTraced;
        internal ObserverRecord Observer;
        internal TracerRecord Tracer;
        internal readonly Tell StepTold;

        internal Watch(Observer observer, Tracer tracer, Action<Step> step)
        {
            observer = observer ?? new Observer();
            IsTraced = tracer != null;
            Observer = new ObserverRecord
            {
                Size = Context.SizeOf<ObserverRecord>(),
                Update = (user, now) => Exceptions.Catch((int)Next.Stop,
                    () => (int)observer.Update(Context.Read<Outcome>(now))),
                Ask = (user, now) => Exceptions.Catch((int)Decision.Abort,
                    () => (int)observer.Ask(Context.Read<Outcome>(now)))
            };
            Tracer = new TracerRecord
            {
                Size = Context.SizeOf<TracerRecord>(),
                Call = (user, record) => Exceptions.Catch(0, () =>
                {
                    Call call = Context.Read<Call>(record);
                    tracer.Call(call, ArgumentsOf(call));
                    return 0;
                }),
                Permit = (user, record) => Exceptions.Catch((int)Next.Stop, () =>
                {
                    Call call = Context.Read<Call>(record);
                    return (int)tracer.Permit(call, ArgumentsOf(call));
                })
            };
            if (step != null)
                StepTold = (user, record) => Exceptions.Catch(0, () =>
                {
                    step(Context.Read<Step>(record));
                    return 0;
                });
        }

        private static string[] ArgumentsOf(Call call)
        {
            string[] arguments = new string[call.ArgumentCount];
            for (int i = 0; i < arguments.Length; ++i)
                arguments[i] = Marshal.PtrToStringUni(Marshal.ReadIntPtr(call.Arguments, i * IntPtr.Size));
            return arguments;
        }
    }
}
