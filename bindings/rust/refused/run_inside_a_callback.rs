// error[E0599]: no method named `prepare` found for reference `&Handle`
struct Running;

impl temz::Tracer for Running {
    fn call(&mut self, context: &temz::Handle, _: &temz::Call) {
        context.prepare(temz::Mode::Install).run().unwrap();
    }
}

fn main() {}
