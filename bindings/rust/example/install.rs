//! Checks and plans what install.xml describes, installs it, tells of each action and of each call to
//! the system, and removes it again.

use std::process::ExitCode;
use temz::{Call, Check, Context, Decision, Error, Handle, Mode, Next, Observer, Outcome};
use temz::{Result, StepKind, Tracer};

struct Watcher;

impl Observer for Watcher {
    fn update(&mut self, _: &Handle, now: &Outcome) -> Next {
        println!("{:3}% {} {}", now.progress(), now.action().text1(), now.action().text2());
        Next::Continue
    }

    /// A host with a user asks him here: retry, abort or ignore?
    fn ask(&mut self, _: &Handle, now: &Outcome) -> Decision {
        let error = now.error();
        println!("{:?} has failed: {} {}", error.code(), error.text1(), error.message());
        Decision::Abort
    }
}

struct Trace;

impl Tracer for Trace {
    fn call(&mut self, _: &Handle, call: &Call) {
        let arguments: Vec<_> = call.arguments().map(|argument| argument.to_string()).collect();
        if call.group() == "log" {
            println!("       {}", arguments[0]);
            return;
        }
        print!("       {}: {}({})", call.group(), call.name(), arguments.join(", "));
        print!(" = {}", call.result());
        if call.failed() {
            print!(", error {}", call.system_error());
        }
        println!();
    }
}

fn check(script: &str) -> Result<()> {
    Check::new(script).run(|finding| {
        println!("{}:{}: {} {}", finding.file(), finding.line(), finding.code(), finding.text());
    })
}

fn plan(context: &mut Context) -> Result<Outcome> {
    context.prepare(Mode::Install).plan(&[], |_, step| match step.kind() {
        StepKind::CHANGE => println!("would be: {:?} {}", step.change(), step.object()),
        StepKind::FAILURE => println!("would fail: {} {}", step.object(), step.message()),
        _ => {}
    })
}

fn run(context: &mut Context, mode: Mode) -> Result<()> {
    let outcome = context.prepare(mode).observer(&mut Watcher).tracer(&mut Trace).run()?;
    if outcome.restart() {
        println!("Restart the machine to complete this.");
    }
    Ok(())
}

fn install_and_remove(script: &str) -> Result<()> {
    check(script)?;
    let mut context = Context::new()?;
    context.load(script)?;
    plan(&mut context)?;
    run(&mut context, Mode::Install)?;
    run(&mut context, Mode::Uninstall)
}

fn main() -> ExitCode {
    match install_and_remove("install.xml") {
        Ok(()) => println!("Installed and removed."),
        Err(Error::Stopped(_)) => println!("Stopped. What was done before stays."),
        Err(error) => {
            eprintln!("{}", error);
            return ExitCode::FAILURE;
        }
    }
    ExitCode::SUCCESS
}
