use temz::{Context, Handle, Mode, Next, Observer, Outcome};

/// Shows what is about to be done.
struct Progress;

impl Observer for Progress {
    fn update(&mut self, _: &Handle, now: &Outcome) -> Next {
        println!("{:3}% {}", now.progress(), now.action().text1());
        Next::Continue
    }
}

fn main() -> temz::Result<()> {
    let remove = std::env::args().nth(1).as_deref() == Some("uninstall");
    let mode = if remove { Mode::Uninstall } else { Mode::Install };
    let mut context = Context::new()?;
    context.load("install.xml")?;
    let outcome = context.prepare(mode).observer(&mut Progress).run()?;
    if outcome.restart() {
        println!("Restart the machine to complete this.");
    }
    println!("Done.");
    Ok(())
}
