// error[E0521]: borrowed data escapes outside of closure
fn main() {
    let mut kept = None;
    temz::Check::new("install.xml").run(|finding| kept = Some(finding)).unwrap();
}
