use crate::host::{app, one_action, same, script, status, three_files};
use crate::host::{Host, Trace, Watcher};
use std::cell::Cell;
use temz::{Code, Error, Mode, Status};

#[test]
fn trace_shows_calls_in_order() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&three_files()).unwrap();

    host.traced(Mode::Install, &mut trace).unwrap();

    let copies = trace.named("CopyFileW");
    assert_eq!(copies.len(), 3);
    for (copy, (source, target)) in copies.iter().zip([
        (r"payload\greeter.txt", "1.txt"),
        (r"payload\manual.txt", "2.txt"),
        (r"payload\changes.txt", "3.txt"),
    ]) {
        assert_eq!(copy.group, "file");
        assert_eq!(copy.arguments.len(), 3);
        assert!(copy.arguments[0].ends_with(source));
        assert_eq!(copy.arguments[1], app(target).to_str().unwrap());
        assert_eq!(copy.arguments[2], "0");
        assert_eq!((copy.result.as_str(), copy.failed, copy.system_error), ("1", false, 0));
    }
}

#[test]
fn trace_shows_lines_of_the_log() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&one_action()).unwrap();

    host.traced(Mode::Install, &mut trace).unwrap();

    let lines = trace.places("INFO");
    assert!(lines.len() > 1 && trace.places("CallEntry")[0] > lines[0]);
    let line = &trace.calls[lines[0]];
    assert_eq!((line.group.as_str(), line.arguments.len(), line.failed), ("log", 1, false));
    assert!(line.arguments[0].ends_with("callDllEntry:temz_test_actions.dll;answer"));
}

#[test]
fn trace_shows_the_registry_by_names() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&script(
        r"<Feature><Component On='install'><RegistryKey Action='create' Root='HKEY_CURRENT_USER'
        Key='Software\temz-rust'><RegistryValue Name='Number' Type='REG_DWORD' Value='42'/>
        </RegistryKey></Component><Component On='uninstall'><RegistryKey Action='remove'
        Root='HKEY_CURRENT_USER' Key='Software\temz-rust'/></Component></Feature>",
    ))
    .unwrap();

    host.traced(Mode::Install, &mut trace).unwrap();

    let value = trace.named("RegSetValueExW")[0];
    assert_eq!(value.group, "registry");
    assert_eq!(value.arguments.len(), 6);
    assert_eq!(value.arguments[0], r"HKEY_CURRENT_USER\Software\temz-rust");
    assert_eq!((value.arguments[1].as_str(), value.arguments[4].as_str()), ("Number", "42"));
    assert_eq!((value.result.as_str(), value.failed), ("0", false));
    host.traced(Mode::Uninstall, &mut trace).unwrap();
    assert_eq!(trace.named("RegDeleteKeyW").len(), 1);
}

#[test]
fn trace_shows_failures() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&script("<Feature><ComponentRef Id='Missing'/></Feature>")).unwrap();

    assert_eq!(status(host.traced(Mode::Install, &mut trace)), Status::RUN_FAILED);

    let copy = trace.named("CopyFileW")[0];
    assert_eq!((copy.failed, copy.system_error, copy.result.as_str()), (true, 2, "0"));
}

#[test]
fn traced_run_equals_an_untraced_one() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&three_files()).unwrap();
    let untraced = host.run(Mode::Install).unwrap();
    host.run(Mode::Uninstall).unwrap();

    let traced = host.traced(Mode::Install, &mut trace).unwrap();

    assert!(!trace.calls.is_empty());
    assert!(same(&untraced, &traced));
    assert_eq!(host.files(), [true, true, true]);
}

#[test]
fn tracer_may_ask_for_the_outcome() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let copies = Cell::new(0);
    let mut trace = Trace {
        in_call: Some(Box::new(|context, call| {
            let outcome = context.outcome().unwrap();
            assert!(outcome.progress() <= 100);
            if call.name() == "CopyFileW" {
                let target = call.arguments().nth(1).unwrap().to_string();
                assert!(target.ends_with(&outcome.action().text1().to_string()));
                copies.set(copies.get() + 1);
            }
        })),
        ..Trace::default()
    };
    host.traced(Mode::Install, &mut trace).unwrap();
    assert_eq!(copies.get(), 3);
}

#[test]
fn what_a_tracer_asks_is_not_traced() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut unasked = Trace::default();
    host.traced(Mode::Install, &mut unasked).unwrap();
    host.run(Mode::Uninstall).unwrap();

    let mut asking = Trace {
        in_call: Some(Box::new(|context, _| {
            context.directory("System32Folder").unwrap();
        })),
        ..Trace::default()
    };
    host.traced(Mode::Install, &mut asking).unwrap();
    assert_eq!(asking.calls.len(), unasked.calls.len());
}

#[test]
fn trace_ends_with_its_tracer() {
    let mut host = Host::new();
    let mut watcher = Watcher { stop_at: 2, ..Watcher::default() };
    let mut trace = Trace::default();
    host.load(&three_files()).unwrap();
    let stopped =
        host.context.prepare(Mode::Install).observer(&mut watcher).tracer(&mut trace).run();
    assert!(matches!(stopped, Err(Error::Stopped(_))));
    let calls = trace.calls.len();
    assert!(calls > 0);
    host.run(Mode::Install).unwrap();
    assert_eq!(trace.calls.len(), calls);
}

#[test]
fn trace_marks_what_changes_something() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&three_files()).unwrap();
    host.traced(Mode::Install, &mut trace).unwrap();
    host.traced(Mode::Uninstall, &mut trace).unwrap();
    for changing in ["CreateDirectoryW", "CopyFileW", "DeleteFileW"] {
        assert!(trace.named(changing)[0].changes);
    }
    assert!(!trace.named("FindFirstFileW")[0].changes);
}

#[test]
fn permit_is_asked_before_each_change() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut trace = Trace {
        in_permit: Some(Box::new(|_, call| {
            assert!(call.changes() && !call.failed());
            assert!(call.result().is_empty() && call.duration().is_zero());
            if call.name() == "CopyFileW" {
                let target = call.arguments().nth(1).unwrap().to_os_string();
                assert!(!std::path::Path::new(&target).exists());
            }
        })),
        ..Trace::default()
    };

    host.traced(Mode::Install, &mut trace).unwrap();

    // The directory and the copy of each file.
    assert_eq!(trace.permits.len(), 6);
    let last = &trace.permits[5];
    assert_eq!((last.group.as_str(), last.name.as_str()), ("file", "CopyFileW"));
    assert_eq!(last.arguments.len(), 3);
    assert_eq!(last.arguments[1], app("3.txt").to_str().unwrap());
    assert_eq!(host.files(), [true, true, true]);
}

#[test]
fn refused_change_ends_the_run() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    let mut trace = Trace { refuse_at: 4, ..Trace::default() };
    host.load(&three_files()).unwrap();

    let run = host.context.prepare(Mode::Install).observer(&mut watcher).tracer(&mut trace).run();

    match run {
        Err(Error::Stopped(outcome)) => {
            assert_eq!(outcome.result(), 0);
            assert_eq!(outcome.action().code(), Code::ACTION_COPY_FILE);
            assert_eq!(outcome.action().text1(), "2.txt");
        }
        other => panic!("{:?}", other),
    }
    assert_eq!((trace.permits.len(), watcher.asks.len()), (4, 0));
    assert_eq!(host.files(), [true, false, false]);
    host.traced(Mode::Install, &mut trace).unwrap();
    assert_eq!(host.files(), [true, true, true]);
}

#[test]
fn permit_may_ask() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut trace = Trace {
        in_permit: Some(Box::new(|context, _| {
            context.outcome().unwrap();
            context.directory("System32Folder").unwrap();
        })),
        ..Trace::default()
    };
    host.traced(Mode::Install, &mut trace).unwrap();
    assert_eq!(trace.permits.len(), 6);
    assert_eq!(host.files(), [true, true, true]);
}
