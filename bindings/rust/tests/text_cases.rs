use crate::host::{alone, one_caution, status, Host};
use temz::{Mode, Status};

/// A script with a variable of so many characters.
fn variable_of(length: usize) -> String {
    one_caution().replace("Value='a text'", &format!("Value='{}'", "t".repeat(length)))
}

#[test]
fn exact_buffer_is_filled() {
    let mut host = Host::new();
    for length in [0, 1, 510, 511, 512, 1023, 5000] {
        host.context.unload().unwrap();
        host.load(&variable_of(length)).unwrap();
        assert_eq!(host.context.variable("TEXT").unwrap(), "t".repeat(length));
    }
}

#[test]
fn absent_names_are_not_found() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    for (name, reason) in [
        ("absent", "absent variable is no exist."),
        ("text", "text variable is no exist."),
        ("", " variable is no exist."),
        ("NUMBER", "It doesn't support getString method."),
    ] {
        let error = host.context.variable(name).unwrap_err();
        assert_eq!(
            error.to_string(),
            format!("There is no such variable or directory. {}", reason)
        );
        assert_eq!(error.status(), Some(Status::NOT_FOUND));
    }
    assert_eq!(status(host.context.directory("absent")), Status::NOT_FOUND);
    assert_eq!(
        host.context.last_failure().unwrap(),
        "Get directory error:can't get the absent directory"
    );
}

#[test]
fn empty_text_needs_its_terminator() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    assert_eq!(host.context.variable("EMPTY").unwrap(), "");
}

#[test]
fn failure_text_lasts_until_the_next_call() {
    let mut host = Host::new();
    let last = |host: &Host| host.context.last_failure().unwrap();
    host.load(&one_caution()).unwrap();
    assert_eq!(last(&host), "");
    assert!(host.context.variable("absent").is_err());
    host.run(Mode::Install).unwrap();
    assert_eq!(last(&host), "absent variable is no exist.");
    assert_eq!(last(&host), "absent variable is no exist.");
    host.context.directory("System32Folder").unwrap();
    assert_eq!(last(&host), "");
    assert!(host.context.directory("absent").is_err());
    host.context.variable("TEXT").unwrap();
    assert_eq!(last(&host), "");
    assert!(host.context.directory("absent").is_err());
    host.context.unload().unwrap();
    host.load(&one_caution()).unwrap();
    assert_eq!(last(&host), "");
}

#[test]
fn schema_needs_no_context() {
    let _alone = alone();
    let schema = temz::schema().unwrap();
    assert!(schema.starts_with("<?xml"));
    assert!(schema.ends_with("</xs:schema>\n"));
}
