// error[E0599]: no method named `load` found for reference `&Handle`
struct Loading;

impl temz::Observer for Loading {
    fn update(&mut self, context: &temz::Handle, _: &temz::Outcome) -> temz::Next {
        context.load("install.xml").unwrap();
        temz::Next::Continue
    }
}

fn main() {}
