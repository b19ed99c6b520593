use crate::host::{alone, one_caution, status, three_files, write, Host, Watcher, FOLDER};
use temz::{Check, Context, Mode, Severity, Status};

/// An element that the engine doesn't know, on the second line.
const WITH_A_FAULT: &str = "<Script><Product><InstallExecuteSequence><Fragment>\n\
    <Cautoin Title='Mind the gap'/></Fragment></InstallExecuteSequence></Product></Script>";

/// Expects so many findings of this code.
fn expect(count: usize, code: &str, check: &Check) {
    let mut found = 0;
    check.run(|finding| found += usize::from(finding.code() == code)).unwrap();
    assert_eq!(found, count);
}

#[test]
fn check_tells_what_is_wrong_and_where() {
    let _host = Host::new();
    let script = write("checked.xml", WITH_A_FAULT);
    let mut found = 0;

    Check::new(&script)
        .run(|finding| {
            assert_eq!(status(Context::new()), Status::IN_CALLBACK);
            if finding.code() != "TZ203" {
                return;
            }
            found += 1;
            assert_eq!(finding.severity(), Severity::ERROR);
            assert!(finding.ends_run());
            assert_eq!((finding.line(), finding.column(), finding.length()), (2, 1, 8));
            assert_eq!(finding.file().to_os_string(), script.as_os_str());
            assert!(finding.text().to_string().ends_with("`Fragment`."));
            assert!(finding.help().to_string().ends_with("`Caution`?"));
            assert!(finding.source_line().to_string().ends_with("</Script>"));
        })
        .unwrap();

    assert_eq!(found, 1);
}

#[test]
fn check_of_a_script_without_faults_tells_none() {
    let _host = Host::new();
    expect(0, "TZ203", &Check::new(write("checked.xml", &one_caution())));
}

#[test]
fn check_runs_nothing() {
    let mut host = Host::new();
    let check = Check::new(write("checked.xml", &three_files()));
    check.run(|_| ()).unwrap();
    assert_eq!(host.files(), [false, false, false]);
    host.load(&three_files()).unwrap();
    check.run(|_| ()).unwrap();
    host.run(Mode::Install).unwrap();
}

#[test]
fn check_needs_a_file_that_can_be_read() {
    let _host = Host::new();
    let missing = format!(r"{}\missing.xml", FOLDER);
    let there = write("checked.xml", &one_caution());
    let mut found = 0;
    for check in [Check::new(&missing), Check::new(there).previous(&missing)] {
        assert_eq!(status(check.run(|_| found += 1)), Status::NOT_READABLE);
    }
    assert_eq!(found, 0);
}

#[test]
fn check_inside_a_run_is_refused() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    let check = Check::new(write("checked.xml", &one_caution()));
    let mut watcher = Watcher {
        in_update: Some(Box::new(|_, _| {
            assert_eq!(status(check.run(|_| ())), Status::IN_CALLBACK)
        })),
        ..Watcher::default()
    };
    host.watched(Mode::Install, &mut watcher).unwrap();
    assert_eq!(watcher.updates.len(), 1);
}

#[test]
fn each_kind_of_finding_can_be_asked() {
    let _alone = alone();
    let kinds = temz::finding_kinds().unwrap();
    assert!(kinds.len() > 20);
    let mut before = String::new();
    for kind in kinds {
        assert!((Severity::ERROR.0..=Severity::NOTE.0).contains(&kind.severity.0));
        let code = kind.code.to_string();
        assert!(code.starts_with("TZ") && code.len() == 5 && code > before);
        assert!(kind.meaning.to_string().ends_with('.'));
        assert!(kind.remedy.to_string().ends_with('.'));
        before = code;
    }
}
