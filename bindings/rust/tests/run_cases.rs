use crate::host::{app, one_action, one_caution, same, script, three_files, write};
use crate::host::{Host, Watcher, FOLDER};
use std::cell::Cell;
use temz::{Code, Context, Decision, Error, Failure, Handle, Mode, Next, Outcome};

#[test]
fn run_tells_each_action_before_it_is_done() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let mut updates = 0;
    let outcome = {
        let mut watcher = Watcher {
            in_update: Some(Box::new(|_, now| {
                updates += 1;
                if updates != 2 {
                    return;
                }
                assert_eq!(now.action().code(), Code::ACTION_COPY_FILE);
                assert_eq!(now.action().text1(), "2.txt");
                assert!(now.action().text2().is_empty());
                assert_eq!(now.progress(), 33);
                assert_eq!(now.result(), 0);
                assert_eq!(now.error().code(), Code::ERROR_MESSAGE);
                assert!(app("1.txt").exists() && !app("2.txt").exists());
            })),
            ..Watcher::default()
        };
        let outcome = host.watched(Mode::Install, &mut watcher).unwrap();
        assert!(watcher.asks.is_empty());
        outcome
    };
    assert_eq!(updates, 3);
    assert_eq!((outcome.result(), outcome.restart(), outcome.progress()), (0, false, 66));
    assert_eq!(outcome.action().text1(), "3.txt");
    assert_eq!(host.files(), [true, true, true]);

    let outcome = host.run(Mode::Uninstall).unwrap();
    assert_eq!(outcome.action().code(), Code::ACTION_DELETE_FILE);
    assert_eq!(host.files(), [false, false, false]);
}

#[test]
fn run_without_observer_is_done_unseen() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    host.run(Mode::Install).unwrap();
    assert_eq!(host.files(), [true, true, true]);
}

#[derive(Default)]
struct OnlyUpdate(i32);

impl temz::Observer for OnlyUpdate {
    fn update(&mut self, _: &Handle, _: &Outcome) -> Next {
        self.0 += 1;
        Next::Continue
    }
}

#[derive(Default)]
struct OnlyAsk(i32);

impl temz::Observer for OnlyAsk {
    fn ask(&mut self, _: &Handle, _: &Outcome) -> Decision {
        self.0 += 1;
        Decision::Ignore
    }
}

#[test]
fn observer_may_lack_its_functions() {
    let mut host = Host::new();
    host.action.result = 5;
    host.load(&one_action()).unwrap();

    let mut observer = OnlyUpdate::default();
    let result = host.context.prepare(Mode::Install).observer(&mut observer).run();
    assert!(matches!(result, Err(Error::RunFailed(_))));
    assert_eq!(observer.0, 1);

    let mut observer = OnlyAsk::default();
    host.context.prepare(Mode::Install).observer(&mut observer).run().unwrap();
    assert_eq!(observer.0, 1);
}

fn expect_failure_of_action(failure: &Failure) {
    assert_eq!(failure.code(), Code::ACTION_CUSTOM_ACTION);
    assert_eq!(failure.system_error(), 1234);
    assert_eq!(failure.text1(), "answer");
    assert_eq!(failure.text2(), "A title");
    assert_eq!(failure.message(), "It went wrong.");
}

#[test]
fn failure_is_asked_and_aborted() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    host.let_action_fail();

    let error = host.watched(Mode::Install, &mut watcher).unwrap_err();

    assert_eq!(watcher.asks.len(), 1);
    assert_eq!(watcher.asks[0].result(), 0);
    assert_eq!(watcher.asks[0].action().code(), Code::ACTION_CUSTOM_ACTION);
    assert_eq!(watcher.asks[0].action().text2(), "A title");
    expect_failure_of_action(watcher.asks[0].error());
    assert_eq!(
        error.to_string(),
        "The run has failed; the outcome tells what and why. It went wrong."
    );
    match error {
        Error::RunFailed(outcome) => {
            assert_eq!(outcome.result(), 1234);
            expect_failure_of_action(outcome.error());
        }
        other => panic!("{:?}", other),
    }
}

#[test]
fn retry_carries_the_action_out_once_more() {
    let mut host = Host::new();
    host.let_action_fail();
    let action: *mut _ = &mut *host.action;
    let mut watcher = Watcher {
        answers: vec![Decision::Retry],
        // Safe: nobody else has the action while the run waits for this.
        in_ask: Some(Box::new(|_, _| unsafe {
            (*action).result = 0;
            (*action).text_length = 0;
        })),
        ..Watcher::default()
    };

    let outcome = host.watched(Mode::Install, &mut watcher).unwrap();

    assert_eq!(host.action.calls, 2);
    assert_eq!((watcher.updates.len(), watcher.asks.len()), (2, 1));
    assert_eq!(outcome.result(), 0);
    assert_eq!(outcome.error().code(), Code::ERROR_MESSAGE);
    assert!(outcome.error().message().is_empty());
}

#[test]
fn ignored_failure_is_a_success() {
    let mut host = Host::new();
    let mut watcher = Watcher { answers: vec![Decision::Ignore], ..Watcher::default() };
    host.let_action_fail();

    let outcome = host.watched(Mode::Install, &mut watcher).unwrap();

    assert_eq!(host.action.calls, 1);
    assert_eq!(outcome.result(), 0);
    expect_failure_of_action(outcome.error());
}

#[test]
fn stop_before_the_first_does_nothing() {
    let mut host = Host::new();
    let mut watcher = Watcher { stop_at: 1, ..Watcher::default() };
    host.load(&three_files()).unwrap();
    assert!(matches!(host.watched(Mode::Install, &mut watcher), Err(Error::Stopped(_))));
    assert_eq!(watcher.updates.len(), 1);
    assert_eq!(host.files(), [false, false, false]);
}

#[test]
fn stop_in_the_middle_keeps_what_was_done() {
    let mut host = Host::new();
    let mut watcher = Watcher { stop_at: 2, ..Watcher::default() };
    host.load(&three_files()).unwrap();
    match host.watched(Mode::Install, &mut watcher) {
        Err(Error::Stopped(outcome)) => {
            assert_eq!((outcome.result(), outcome.progress()), (0, 33));
            assert_eq!(outcome.action().text1(), "2.txt");
        }
        other => panic!("{:?}", other),
    }
    assert_eq!((watcher.updates.len(), watcher.asks.len()), (2, 0));
    assert_eq!(host.files(), [true, false, false]);
}

#[test]
fn stopped_run_can_be_repeated() {
    let mut host = Host::new();
    let mut watcher = Watcher { stop_at: 2, ..Watcher::default() };
    host.load(&three_files()).unwrap();
    assert!(host.watched(Mode::Install, &mut watcher).is_err());
    host.watched(Mode::Install, &mut watcher).unwrap();
    assert_eq!(watcher.updates.len(), 5);
    assert_eq!(host.files(), [true, true, true]);
}

#[test]
fn names_outside_ascii_stay_whole() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    let path = write(
        "caf\u{e9}.xml",
        &format!(
            "<Script><Product><Directory Id='D\u{e9}' Path='{}\\app\\\u{e9}t\u{e9}'>
            <Component Id='C'><File Name='th\u{e9}.txt' Source='payload\\greeter.txt'/>
            </Component></Directory><InstallExecuteSequence><Feature>
            <ComponentRef Id='C'/></Feature></InstallExecuteSequence></Product></Script>",
            FOLDER
        ),
    );
    host.context.load(path).unwrap();
    let directory = host.context.directory("D\u{e9}").unwrap();
    assert_eq!(directory, app("\u{e9}t\u{e9}\\"));

    host.watched(Mode::Install, &mut watcher).unwrap();

    assert_eq!(watcher.updates[0].action().text1(), "th\u{e9}.txt");
    assert!(app("\u{e9}t\u{e9}\\th\u{e9}.txt").exists());
}

#[test]
fn custom_action_reads_the_action_value() {
    let place_in_parameters = 272;
    let mut host = Host::new();
    host.load(&one_action()).unwrap();
    host.run(Mode::Install).unwrap();
    assert_eq!(host.action.calls, 1);
    let value = &host.action.params[place_in_parameters..];
    assert_eq!(value, (&*host.action as *const _ as u64).to_le_bytes());
}

#[test]
fn outcome_is_empty_before_the_first_run() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    let outcome = host.context.outcome().unwrap();
    assert_eq!((outcome.result(), outcome.restart(), outcome.progress()), (0, false, 0));
    assert_eq!((outcome.action().code(), outcome.error().code()), (Code(0), Code(0)));
    assert!(outcome.action().text1().is_empty() && outcome.error().message().is_empty());
}

#[test]
fn outcome_can_be_asked_later() {
    let mut host = Host::new();
    host.let_action_fail();
    match host.run(Mode::Install) {
        Err(Error::RunFailed(told)) => assert!(same(&told, &host.context.outcome().unwrap())),
        other => panic!("{:?}", other),
    }
    host.action.result = 0;
    host.run(Mode::Install).unwrap();
    assert_eq!(host.context.outcome().unwrap().result(), 0);
}

#[test]
fn questions_leave_the_outcome_alone() {
    let mut host = Host::new();
    host.let_action_fail();
    assert!(host.run(Mode::Install).is_err());
    let before = host.context.outcome().unwrap();
    assert!(host.context.directory("absent").is_err());
    assert!(host.context.variable("absent").is_err());
    assert!(same(&before, &host.context.outcome().unwrap()));
}

#[test]
fn contexts_run_one_after_the_other() {
    let mut host = Host::new();
    let updates = Cell::new(0);
    let watcher = || Watcher {
        in_update: Some(Box::new(|_, _| updates.set(updates.get() + 1))),
        ..Watcher::default()
    };
    host.load(&three_files()).unwrap();
    let mut second = Context::new().unwrap();
    second.load(write("second.xml", &script(crate::host::CAUTION))).unwrap();

    second.prepare(Mode::Install).run().unwrap();
    assert_eq!(host.files(), [false, false, false]);
    host.watched(Mode::Install, &mut watcher()).unwrap();
    assert_eq!(host.files(), [true, true, true]);
    assert_eq!(updates.get(), 3);
    second.prepare(Mode::Upgrade).run().unwrap();
    assert_eq!(updates.get(), 3);
}
