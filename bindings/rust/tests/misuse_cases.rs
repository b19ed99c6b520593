use crate::host::{app, one_caution, status, three_files, write, Host, Watcher};
use temz::{Mode, Status};

#[test]
fn script_must_be_loaded() {
    let mut host = Host::new();
    assert_eq!(status(host.context.load("missing.xml")), Status::LOAD_FAILED);
    assert_eq!(status(host.context.unload()), Status::OK);
    assert_eq!(status(host.context.set_action_value(0)), Status::OK);
    assert_eq!(status(host.context.last_failure()), Status::OK);
    assert_eq!(status(host.run(Mode::Install)), Status::NOT_LOADED);
    assert_eq!(status(host.plan(Mode::Install, &mut Vec::new())), Status::NOT_LOADED);
    assert_eq!(status(host.context.outcome()), Status::NOT_LOADED);
    assert_eq!(status(host.context.variable("TEXT")), Status::NOT_LOADED);
    assert_eq!(status(host.context.directory("System32Folder")), Status::NOT_LOADED);
}

#[test]
fn script_is_loaded_once() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let other = write("other.xml", &one_caution());
    assert_eq!(status(host.context.load(other)), Status::ALREADY_LOADED);
    assert_eq!(status(host.context.load("missing.xml")), Status::ALREADY_LOADED);
    host.run(Mode::Install).unwrap();
    assert!(app("3.txt").exists());
}

#[test]
fn modes_are_three() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    host.load(&three_files()).unwrap();
    for (mode, there) in [(Mode::Install, true), (Mode::Upgrade, true), (Mode::Uninstall, false)] {
        host.watched(mode, &mut watcher).unwrap();
        assert_eq!(host.files(), [there; 3]);
    }
    assert_eq!(watcher.updates.len(), 9);
}
