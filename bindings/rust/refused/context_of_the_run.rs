// error[E0502]: cannot borrow `context` as immutable because it is also borrowed as mutable
fn main() {
    let mut context = temz::Context::new().unwrap();
    context.prepare(temz::Mode::Install).plan(&[], |_, _| drop(context.outcome())).unwrap();
}
