use crate::host::{app, one_action, one_caution, same, status, three_files, write};
use crate::host::{Host, Trace, Watcher};
use std::cell::Cell;
use std::{sync, thread};
use temz::{Check, Context, Decision, Handle, Mode, Status};

/// All that a callback has, on the context of its run.
fn ask_and_set(context: &Handle) {
    assert_eq!(status(context.outcome()), Status::OK);
    assert_eq!(context.variable("TEXT").unwrap(), "a text");
    assert_eq!(status(context.directory("System32Folder")), Status::OK);
    assert_eq!(status(context.variable("absent")), Status::NOT_FOUND);
    assert_eq!(context.last_failure().unwrap(), "absent variable is no exist.");
    assert_eq!(status(context.set_action_value(0)), Status::OK);
    assert_eq!(status(Context::new()), Status::IN_CALLBACK);
}

#[test]
fn callbacks_may_ask_and_set_but_not_change() {
    let mut host = Host::new();
    host.action.result = 5;
    host.load(&one_action()).unwrap();
    let (updates, asks, calls) = (Cell::new(0), Cell::new(0), Cell::new(0));
    let inside = |count: &Cell<i32>, context: &Handle| {
        count.set(count.get() + 1);
        if count.get() == 1 {
            ask_and_set(context);
        }
    };
    let mut watcher = Watcher {
        in_update: Some(Box::new(|context, _| inside(&updates, context))),
        in_ask: Some(Box::new(|context, _| inside(&asks, context))),
        answers: vec![Decision::Ignore],
        ..Watcher::default()
    };
    let mut trace =
        Trace { in_call: Some(Box::new(|context, _| inside(&calls, context))), ..Trace::default() };
    host.context.prepare(Mode::Install).observer(&mut watcher).tracer(&mut trace).run().unwrap();
    assert_eq!((updates.get(), asks.get()), (1, 1));
    assert!(calls.get() > 0);
}

#[test]
fn callbacks_may_not_change_another_context() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    let mut another = Context::new().unwrap();
    let mut watcher = Watcher {
        in_update: Some(Box::new(|_, _| {
            assert_eq!(status(another.load("install.xml")), Status::IN_CALLBACK);
            assert_eq!(status(another.unload()), Status::IN_CALLBACK);
            assert_eq!(status(another.prepare(Mode::Install).run()), Status::IN_CALLBACK);
            let plan = another.prepare(Mode::Install).plan(&[], |_, _| ());
            assert_eq!(status(plan), Status::IN_CALLBACK);
            assert_eq!(another.last_failure().unwrap(), "");
        })),
        ..Watcher::default()
    };
    host.watched(Mode::Install, &mut watcher).unwrap();
    assert_eq!(watcher.updates.len(), 1);
}

#[test]
fn callbacks_see_the_run_go_on() {
    let mut host = Host::new();
    host.action.result = 5;
    host.load(&one_action()).unwrap();
    let mut watcher = Watcher {
        in_update: Some(Box::new(|context, now| assert!(same(now, &context.outcome().unwrap())))),
        in_ask: Some(Box::new(|context, now| assert!(same(now, &context.outcome().unwrap())))),
        ..Watcher::default()
    };
    assert_eq!(status(host.watched(Mode::Install, &mut watcher)), Status::RUN_FAILED);
    assert_eq!((watcher.updates.len(), watcher.asks.len()), (1, 1));
    assert_eq!(status(host.watched(Mode::Install, &mut watcher)), Status::RUN_FAILED);
}

#[test]
fn other_thread_is_turned_away() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    let script = write("another.xml", &one_caution());
    let another = sync::Mutex::new(Context::new().unwrap());
    let mut watcher = Watcher {
        in_update: Some(Box::new(|_, _| {
            let asked = || {
                let mut another = another.lock().unwrap();
                assert_eq!(status(Context::new()), Status::BUSY);
                assert_eq!(status(another.load(&script)), Status::BUSY);
                assert_eq!(status(another.unload()), Status::BUSY);
                assert_eq!(status(another.prepare(Mode::Install).run()), Status::BUSY);
                assert_eq!(status(another.set_action_value(0)), Status::BUSY);
                assert_eq!(status(another.outcome()), Status::BUSY);
                assert_eq!(status(another.last_failure()), Status::BUSY);
                assert_eq!(status(another.variable("TEXT")), Status::BUSY);
                assert_eq!(status(another.directory("System32Folder")), Status::BUSY);
                assert_eq!(status(temz::schema()), Status::BUSY);
                assert_eq!(status(Check::new(&script).run(|_| ())), Status::BUSY);
                assert!(temz::version().is_ok());
            };
            thread::scope(|scope| scope.spawn(asked).join().unwrap());
        })),
        ..Watcher::default()
    };
    host.watched(Mode::Install, &mut watcher).unwrap();
    assert_eq!(watcher.updates.len(), 1);
}

#[test]
fn other_thread_comes_afterwards() {
    let mut host = Host::new();
    let script = write("script.xml", &three_files());
    let context = &mut host.context;
    let install = move || {
        context.load(script).unwrap();
        context.prepare(Mode::Install).run().unwrap();
    };
    thread::scope(|scope| scope.spawn(install).join().unwrap());
    assert!(app("3.txt").exists());
    host.run(Mode::Uninstall).unwrap();
    assert!(!app("3.txt").exists());
}
