//! A panic of the host's code ends the run, and goes on where that was started.

use crate::host::{app, one_caution, script, three_files, write, ACTION};
use crate::host::{Host, Trace, Watcher};
use std::cell::Cell;
use std::panic::{catch_unwind, panic_any, AssertUnwindSafe};
use temz::{Check, Mode};

/// The words of the panic that comes out of this.
fn panic_of<T>(code: impl FnOnce() -> T) -> &'static str {
    match catch_unwind(AssertUnwindSafe(code)) {
        Ok(_) => "",
        Err(panic) => *panic.downcast::<&'static str>().unwrap(),
    }
}

#[test]
fn panic_in_update_ends_the_run_and_comes_out() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut watcher = Watcher {
        in_update: Some(Box::new(|_, now| {
            if now.action().text1() == "2.txt" {
                panic_any("in update");
            }
        })),
        ..Watcher::default()
    };
    assert_eq!(panic_of(|| host.watched(Mode::Install, &mut watcher)), "in update");
    assert_eq!(watcher.updates.len(), 2);
    assert_eq!(host.files(), [true, false, false]);
    host.run(Mode::Install).unwrap();
    assert_eq!(host.files(), [true, true, true]);
}

#[test]
fn panic_in_ask_ends_the_run_and_comes_out() {
    let mut host = Host::new();
    host.action.result = 5;
    // What comes next makes a directory before it is announced.
    let next = "<Feature><ComponentRef Id='Files'/></Feature>";
    host.load(&script(&format!("{}{}", ACTION, next))).unwrap();
    let mut watcher =
        Watcher { in_ask: Some(Box::new(|_, _| panic_any("in ask"))), ..Watcher::default() };
    assert_eq!(panic_of(|| host.watched(Mode::Install, &mut watcher)), "in ask");
    assert!(!app("").exists());
}

#[test]
fn panic_in_call_ends_the_run_before_the_next_change() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut trace = Trace {
        in_call: Some(Box::new(|_, call| {
            if call.name() == "CopyFileW" {
                panic_any("in call");
            }
        })),
        ..Trace::default()
    };
    assert_eq!(panic_of(|| host.traced(Mode::Install, &mut trace)), "in call");
    assert_eq!(trace.calls.last().unwrap().name, "CopyFileW");
    assert_eq!(host.files(), [true, false, false]);
}

#[test]
fn panic_in_permit_ends_the_run_before_that_change() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut trace = Trace {
        in_permit: Some(Box::new(|_, call| {
            if call.name() == "CopyFileW" {
                panic_any("in permit");
            }
        })),
        ..Trace::default()
    };
    assert_eq!(panic_of(|| host.traced(Mode::Install, &mut trace)), "in permit");
    assert_eq!(trace.permits.last().unwrap().name, "CopyFileW");
    assert_eq!(host.files(), [false, false, false]);
}

#[test]
fn panic_in_a_step_ends_the_plan_and_comes_out() {
    let mut host = Host::new();
    let mut steps = 0;
    let mut watcher = Watcher::default();
    host.load(&three_files()).unwrap();
    let plan = || {
        host.context.prepare(Mode::Install).observer(&mut watcher).plan(&[], |_, _| {
            steps += 1;
            panic_any("in a step");
        })
    };
    assert_eq!(panic_of(plan), "in a step");
    assert_eq!(steps, 1);
    assert!(watcher.updates.is_empty());
}

#[test]
fn panic_in_a_finding_comes_out() {
    let _host = Host::new();
    let script = write("checked.xml", "<Script><A/><B/></Script>");
    let mut found = 0;
    let check = || {
        Check::new(script).run(|_| {
            found += 1;
            panic_any("in a finding");
        })
    };
    assert_eq!(panic_of(check), "in a finding");
    assert_eq!(found, 1);
}

#[test]
fn panic_inside_a_question_ends_the_run_and_comes_out() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    let asking = Cell::new(false);
    let mut watcher = Watcher {
        in_update: Some(Box::new(|context, _| {
            asking.set(true);
            context.directory("ProgramFilesFolder").unwrap();
            asking.set(false);
            panic_any("in update");
        })),
        ..Watcher::default()
    };
    let mut trace = Trace {
        in_call: Some(Box::new(|_, _| {
            if asking.get() {
                panic_any("in call");
            }
        })),
        ..Trace::default()
    };
    let run =
        || host.context.prepare(Mode::Install).observer(&mut watcher).tracer(&mut trace).run();
    assert_eq!(panic_of(run), "in call");
}
