// error[E0382]: borrow of moved value: `context`
fn main() {
    let context = temz::Context::new().unwrap();
    drop(context);
    context.outcome().unwrap();
}
