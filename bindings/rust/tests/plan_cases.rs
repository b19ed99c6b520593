use crate::host::{app, one_caution, same, script, status, three_files, CAUTION, FOLDER};
use crate::host::{HeardStep, Host, Trace, Watcher};
use temz::{Code, Context, Error, Mode, Status};

/// The lines of a plan of an install.
fn lines(host: &mut Host) -> Vec<String> {
    let mut steps = Vec::new();
    host.plan(Mode::Install, &mut steps).unwrap();
    steps.into_iter().map(|step| step.line).collect()
}

#[test]
fn plan_changes_nothing() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    host.load(&three_files()).unwrap();

    let outcome =
        host.context.prepare(Mode::Install).observer(&mut watcher).plan(&[], |_, _| ()).unwrap();

    assert!(!app("").exists());
    assert_eq!(watcher.updates.len(), 3);
    assert_eq!(outcome.result(), 0);
    assert_eq!(outcome.action().text1(), "3.txt");
    assert!(same(&outcome, &host.context.outcome().unwrap()));
    host.run(Mode::Install).unwrap();
    host.plan(Mode::Uninstall, &mut Vec::new()).unwrap();
    assert_eq!(host.files(), [true, true, true]);
}

#[test]
fn plan_tells_its_steps_in_order() {
    let mut host = Host::new();
    host.load(&script(&format!(
        "<Condition Expression='OS_BIT E 64'><Feature Id='Main'><ComponentRef Id='Files'/></Feature>
        </Condition>{}",
        CAUTION
    )))
    .unwrap();

    let lines = lines(&mut host);

    assert_eq!(lines[0], "0 TEMZ_STEP_ACTION Condition OS_BIT E 64");
    assert_eq!(lines[1], "0 TEMZ_STEP_CONDITION Condition OS_BIT E 64 [OS_BIT = 64] true");
    assert_eq!(lines[2], "1 TEMZ_STEP_GROUP Feature ");
    assert_eq!(lines[3], "2 TEMZ_STEP_GROUP Component ");
    assert_eq!(lines[4], "3 TEMZ_STEP_ELEMENT File ");
    let place = |part: &str| lines.iter().position(|line| line.contains(part)).unwrap();
    assert!(place("TEMZ_CHANGE_DIRECTORY_ADDED") < place("TEMZ_CHANGE_FILE_ADDED"));
    assert_eq!(
        lines[lines.len() - 3..],
        [
            "0 TEMZ_STEP_GROUP Fragment ",
            "1 TEMZ_STEP_ELEMENT Caution ",
            "1 TEMZ_STEP_ACTION Caution "
        ]
    );
}

#[test]
fn plan_tells_what_is_left_out() {
    let mut host = Host::new();
    host.load(&script(
        "<Condition Expression='NUMBER E 8'><Feature><ComponentRef Id='Files'/></Feature>
        </Condition><Fragment On='uninstall'><Caution Title='a'/></Fragment>",
    ))
    .unwrap();
    assert_eq!(
        lines(&mut host)[1..],
        [
            "0 TEMZ_STEP_CONDITION Condition NUMBER E 8 [NUMBER = 7] false without 5, 3 files",
            "0 TEMZ_STEP_LEFT_OUT Fragment uninstall without 2, 0 files"
        ]
    );
}

#[test]
fn plan_tells_searches() {
    let mut host = Host::new();
    let search = |name| {
        format!(
            "<Fragment><FileSearch Name='{}' Path='{}' Expression='NUMBER = 8'/></Fragment>",
            name, FOLDER
        )
    };
    host.load(&script(&(search("none.txt") + &search("script.xml")))).unwrap();
    let lines = lines(&mut host);
    assert_eq!(lines.len(), 4);
    assert_eq!(lines[1], r"1 TEMZ_STEP_SEARCH FileSearch C:\temz-rust\none.txt [] false");
    assert_eq!(
        lines[3],
        r"1 TEMZ_STEP_SEARCH FileSearch C:\temz-rust\script.xml [NUMBER = 8] true"
    );
}

#[test]
fn plan_is_traced_and_permitted_like_a_run() {
    let mut host = Host::new();
    let mut trace = Trace::default();
    host.load(&three_files()).unwrap();
    host.context.prepare(Mode::Install).tracer(&mut trace).plan(&[], |_, _| ()).unwrap();
    let copy = trace.named("CopyFileW")[2];
    assert!(copy.changes && !copy.failed);
    assert_eq!(copy.arguments[1], app("3.txt").to_str().unwrap());
    assert_eq!(copy.result, "1");
    assert_eq!(trace.permits.len(), 6);

    host.traced(Mode::Install, &mut trace).unwrap();
    assert_eq!(trace.permits.len(), 12);
    trace.refuse_at = 14;
    match host.context.prepare(Mode::Upgrade).tracer(&mut trace).plan(&[], |_, _| ()) {
        Err(Error::Stopped(outcome)) => assert_eq!(outcome.action().text1(), "1.txt"),
        other => panic!("{:?}", other),
    }
}

#[test]
fn plan_goes_on_past_a_failure() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    let mut steps = Vec::new();
    let no_service = |attributes| {
        format!(
            "<Fragment><ServiceControl Name='temz-rust-none' Action='start' Wait='no' {}/>
            </Fragment>",
            attributes
        )
    };
    host.load(&script(&(no_service("") + &no_service("Vital='no'") + CAUTION))).unwrap();

    let outcome = host
        .context
        .prepare(Mode::Install)
        .observer(&mut watcher)
        .plan(&[], |_, step| steps.push(HeardStep::of(step)))
        .unwrap();

    assert!(watcher.asks.is_empty());
    assert_eq!(outcome.result(), 0);
    let failures: Vec<_> = steps
        .iter()
        .filter(|step| step.line.contains("TEMZ_STEP_FAILURE"))
        .map(|step| (step.line.as_str(), step.code.unwrap()))
        .collect();
    let start = Code::ACTION_START_SERVICE;
    assert_eq!(
        failures,
        [
            ("1 TEMZ_STEP_FAILURE ServiceControl temz-rust-none TEMZ_FAILURE_VITAL", start),
            ("1 TEMZ_STEP_FAILURE ServiceControl temz-rust-none TEMZ_FAILURE_NOT_VITAL", start)
        ]
    );
    assert_eq!(steps.last().unwrap().line, "1 TEMZ_STEP_ACTION Caution ");
}

#[test]
fn plan_ends_where_a_run_ends_unasked() {
    let mut host = Host::new();
    let mut steps = Vec::new();
    host.load(&script(&format!(
        "<Fragment><Condition Expression='NONE E 1'/></Fragment>{}",
        CAUTION
    )))
    .unwrap();
    let outcome = match host.plan(Mode::Install, &mut steps) {
        Err(Error::RunFailed(outcome)) => outcome,
        other => panic!("{:?}", other),
    };
    assert_eq!(outcome.result(), -1);
    assert_eq!(steps.len(), 3);
    assert_eq!(steps[2].line, "1 TEMZ_STEP_FAILURE Condition  TEMZ_FAILURE_ENDS_RUN");
    assert_eq!(steps[2].code, Some(Code::ERROR_MESSAGE));
    assert_eq!(steps[2].text, outcome.error().message().to_string());
    assert!(!steps[2].text.is_empty());
}

#[test]
fn plan_can_be_stopped() {
    let mut host = Host::new();
    let mut watcher = Watcher { stop_at: 2, ..Watcher::default() };
    let mut actions = 0;
    host.load(&three_files()).unwrap();
    let plan = host.context.prepare(Mode::Install).observer(&mut watcher);
    match plan.plan(&[], |_, step| {
        actions += usize::from(step.kind() == temz::StepKind::ACTION);
    }) {
        Err(Error::Stopped(outcome)) => assert_eq!(outcome.action().text1(), "2.txt"),
        other => panic!("{:?}", other),
    }
    assert_eq!(actions, 1);
}

#[test]
fn plan_leaves_variables_as_they_were() {
    let mut host = Host::new();
    host.load(&script(
        "<Condition Expression='TEXT = EMPTY'/><Condition Expression='NUMBER = 9'/>
        <Condition Expression='NUMBER E 9'/>",
    ))
    .unwrap();
    for _ in 0..2 {
        let lines = lines(&mut host);
        assert!(lines[1].contains("[TEXT = \"a text\", EMPTY = \"\"]"));
        assert!(lines[3].contains("[NUMBER = 7]"));
        assert!(lines[5].contains("[NUMBER = 9]"));
        assert_eq!(host.context.variable("TEXT").unwrap(), "a text");
    }
    host.run(Mode::Install).unwrap();
    assert_eq!(host.context.variable("TEXT").unwrap(), "");
}

#[test]
fn plan_assumes_other_values() {
    let mut host = Host::new();
    let mut detail = String::new();
    host.load(&script("<Condition Expression='OS_BIT E 32 AND ( TEXT E EMPTY )'/>")).unwrap();
    let assumed = [("OS_BIT", "32"), ("TEXT", "b"), ("TEXT", "c")];
    host.context
        .prepare(Mode::Install)
        .plan(&assumed, |_, step| detail = step.detail().to_string())
        .unwrap();
    assert_eq!(detail, "OS_BIT = 32, TEXT = \"c\", EMPTY = \"\"");
    assert!(lines(&mut host)[1].contains("[OS_BIT = 64, TEXT = \"a text\", EMPTY = \"\"]"));
}

#[test]
fn assumptions_must_be_possible() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    host.load(&one_caution()).unwrap();
    for (expected, name, value) in [
        (Status::NOT_FOUND, "NONE", "1"),
        (Status::BAD_VALUE, "NUMBER", "x"),
        (Status::BAD_VALUE, "OS_BIT", ""),
    ] {
        let run = host.context.prepare(Mode::Install).observer(&mut watcher);
        match run.plan(&[("NUMBER", "-5"), (name, value)], |_, _| ()) {
            Err(Error::Status { status, reason }) => {
                assert_eq!((status, reason.as_str()), (expected, name));
            }
            other => panic!("{:?}", other),
        }
    }
    assert!(watcher.updates.is_empty());
}

#[test]
fn steps_may_ask_and_set_but_not_change() {
    let mut host = Host::new();
    let mut steps = 0;
    host.load(&three_files()).unwrap();
    host.context
        .prepare(Mode::Install)
        .plan(&[], |context, _| {
            steps += 1;
            context.outcome().unwrap();
            context.variable("TEXT").unwrap();
            context.set_action_value(0).unwrap();
            assert_eq!(status(Context::new()), Status::IN_CALLBACK);
        })
        .unwrap();
    assert!(steps > 3);
}

#[test]
fn planner_is_good_for_its_plan_only() {
    let mut host = Host::new();
    let mut steps = Vec::new();
    host.load(&one_caution()).unwrap();
    host.plan(Mode::Install, &mut steps).unwrap();
    let told = steps.len();
    host.run(Mode::Install).unwrap();
    host.plan(Mode::Install, &mut Vec::new()).unwrap();
    assert_eq!(steps.len(), told);
}
