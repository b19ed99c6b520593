// error[E0277]: `*mut temz_context` cannot be shared between threads safely
fn main() {
    let mut context = temz::Context::new().unwrap();
    let run = context.prepare(temz::Mode::Install);
    let ask = |context: &temz::Handle| {
        std::thread::scope(|scope| scope.spawn(|| context.outcome()).join().unwrap().unwrap());
    };
    run.plan(&[], |context, _| ask(context)).unwrap();
}
