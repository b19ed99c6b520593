// error[E0277]: `*mut temz_context` cannot be shared between threads safely
fn main() {
    let context = temz::Context::new().unwrap();
    std::thread::scope(|scope| scope.spawn(|| context.outcome().unwrap()).join().unwrap());
}
