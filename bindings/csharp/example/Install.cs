using System;
using Temz;

/// <summary>Checks and plans what install.xml describes, installs it, tells of each action and of each call
/// to the system, and removes it again.</summary>
static class Install
{
    class Watcher : Observer
    {
        public override Next Update(Outcome now)
        {
            Console.WriteLine("{0,3}% {1} {2}", now.Progress, now.Action.Text1, now.Action.Text2);
            return Next.Continue;
        }

        public override Decision Ask(Outcome now)
        {
            Console.WriteLine("{0} has failed: {1} {2}", now.Error.Code, now.Error.Text1, now.Error.Message);
            return Decision.Abort;
        }
    }

    class Trace : Tracer
    {
        public override void Call(Call call, string[] arguments)
        {
            Console.WriteLine("       {0}: {1}({2}) = {3}", call.Group, call.Name,
                              string.Join(", ", arguments), call.Result);
        }
    }

    static int Main()
    {
        try
        {
            Context.Check("install.xml", finding =>
                Console.WriteLine("{0}:{1}: {2} {3}", finding.File, finding.Line, finding.Code, finding.Text));
            using (Context context = new Context())
            {
                context.Load("install.xml");
                context.Plan(Mode.Install, step =>
                {
                    if (step.Kind == StepKind.Change)
                        Console.WriteLine("would be: {0} {1}", (Change)step.Code, step.Object);
                });
                Outcome outcome = context.Run(Mode.Install, new Watcher(), new Trace());
                if (outcome.Restart)
                    Console.WriteLine("Restart the machine to complete this.");
                context.Run(Mode.Uninstall, new Watcher(), new Trace());
            }
            Console.WriteLine("Installed and removed.");
            return 0;
        }
        catch (TemzException failure)
        {
            Console.Error.WriteLine(failure.Message);
            return 1;
        }
    }
}
