use crate::host::{one_action, one_caution, status, Host, Trace, Watcher, FOLDER};
use temz::{Error, Mode, Status};

/// A load that fails, with the text of the last failure.
fn expect_failure(host: &mut Host, text: &str, script: &str) {
    match host.load(script) {
        Err(Error::Status { status: Status::LOAD_FAILED, reason }) => assert_eq!(reason, text),
        other => panic!("{:?}", other),
    }
    assert_eq!(host.context.last_failure().unwrap(), text);
    assert_eq!(status(host.run(Mode::Install)), Status::NOT_LOADED);
}

#[test]
fn missing_file_fails_without_a_word() {
    let mut host = Host::new();
    assert_eq!(status(host.load("<Script/>")), Status::LOAD_FAILED);
    for missing in [format!(r"{}\missing.xml", FOLDER), String::new()] {
        assert_eq!(status(host.context.load(missing)), Status::LOAD_FAILED);
        assert_eq!(host.context.last_failure().unwrap(), "");
    }
}

#[test]
fn file_that_is_no_xml_fails_without_a_word() {
    let mut host = Host::new();
    expect_failure(&mut host, "", "<Script><Product>");
    expect_failure(&mut host, "", "MZ");
}

#[test]
fn script_nested_too_deep_fails_without_a_word() {
    let script = "<a>".repeat(257) + &"</a>".repeat(257);
    expect_failure(&mut Host::new(), "", &script);
}

#[test]
fn script_without_product_tells_so() {
    expect_failure(&mut Host::new(), "There is no Product element.", "<Script/>");
}

#[test]
fn failed_load_leaves_nothing_behind() {
    let mut host = Host::new();
    expect_failure(
        &mut host,
        "There is no Product element.",
        "<Script><Variable Id='GONE' Type='string' Value='x'/></Script>",
    );
    host.load(&one_caution()).unwrap();
    assert_eq!(status(host.context.variable("GONE")), Status::NOT_FOUND);
    host.run(Mode::Install).unwrap();
}

#[test]
fn relative_path_counts_from_current_directory() {
    let mut host = Host::new();
    host.context.load("install.xml").unwrap();
    host.context.unload().unwrap();
    host.context.load(r".\install.xml").unwrap();
}

#[test]
fn unload_forgets_script_and_outcome() {
    let mut host = Host::new();
    host.load(&one_action()).unwrap();
    host.action.result = 5;
    assert_eq!(status(host.run(Mode::Install)), Status::RUN_FAILED);
    host.context.unload().unwrap();
    host.context.unload().unwrap();
    assert_eq!(status(host.context.outcome()), Status::NOT_LOADED);

    host.load(&one_caution()).unwrap();
    let outcome = host.context.outcome().unwrap();
    assert_eq!(outcome.result(), 0);
    assert_eq!(outcome.error().code().0, 0);
}

#[test]
fn unload_keeps_observer_tracer_and_action_value() {
    let mut host = Host::new();
    let (mut watcher, mut trace) = (Watcher::default(), Trace::default());
    host.load(&one_caution()).unwrap();
    host.context.unload().unwrap();
    host.load(&one_action()).unwrap();
    host.context.prepare(Mode::Install).observer(&mut watcher).tracer(&mut trace).run().unwrap();
    assert_eq!(watcher.updates.len(), 1);
    assert!(!trace.calls.is_empty());
    assert_eq!(host.action.calls, 1);
}
