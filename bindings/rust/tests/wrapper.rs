//! What the crate does of its own.

use crate::host::{alone, app, one_caution, script, status, three_files, write};
use crate::host::{Host, Trace, Watcher, FOLDER};
use std::path::Path;
use std::process::Command;
use std::{env, fs, thread};
use temz::{Check, Context, Error, Mode, Status};

/// What the library says of a context: that it is none, once it has been freed.
fn answer_of(context: usize) -> Status {
    // Safe: the library looks for the context among its own.
    unsafe { (temz::library().unwrap().temz_unload)(context as *mut _) }
}

#[test]
fn dropped_context_is_freed() {
    let _alone = alone();
    let context = Context::new().unwrap();
    let raw = context.as_raw() as usize;
    assert_eq!(answer_of(raw), Status::OK);
    drop(context);
    assert_eq!(answer_of(raw), Status::BAD_CONTEXT);
}

#[test]
fn context_dropped_inside_a_callback_is_freed_later() {
    let mut host = Host::new();
    host.load(&one_caution()).unwrap();
    let others = [Context::new().unwrap(), Context::new().unwrap()];
    let raws = [others[0].as_raw() as usize, others[1].as_raw() as usize];
    let mut others = others.into_iter();
    let mut watcher = Watcher {
        in_update: Some(Box::new(|_, _| {
            drop(others.next());
            let other = others.next();
            thread::scope(|scope| scope.spawn(move || drop(other)).join().unwrap());
        })),
        ..Watcher::default()
    };
    host.watched(Mode::Install, &mut watcher).unwrap();
    assert_eq!(raws.map(answer_of), [Status::OK, Status::OK]);
    drop(Context::new().unwrap());
    assert_eq!(raws.map(answer_of), [Status::BAD_CONTEXT, Status::BAD_CONTEXT]);
}

#[test]
fn text_with_a_zero_is_refused() {
    let mut host = Host::new();
    assert!(matches!(host.context.load("install.xml\0"), Err(Error::ZeroInText)));
    host.load(&one_caution()).unwrap();
    let is_refused = |result| matches!(result, Err(Error::ZeroInText));
    assert!(is_refused(host.context.variable("TEXT\0").map(drop)));
    assert!(is_refused(host.context.directory("System32Folder\0").map(drop)));
    assert!(is_refused(Check::new("install.xml").payload("\0").run(|_| ())));
    let plan = host.context.prepare(Mode::Install).plan(&[("TEXT", "\0")], |_, _| ());
    assert!(is_refused(plan.map(drop)));
    assert_eq!(Error::ZeroInText.to_string(), "A text has a zero in it.");
}

#[test]
fn check_looks_at_payload_and_previous_script() {
    let _host = Host::new();
    let all = script(
        "<Feature><ComponentRef Id='Files'/><ComponentRef Id='Missing'/></Feature>
        <Fragment On='uninstall'><RemoveDirectory Path='[APPLICATIONROOTDIRECTORY]'/></Fragment>",
    );
    let script = write("checked.xml", &all);
    let tells = |check: &Check, code: &str| {
        let mut told = false;
        check.run(|finding| told |= finding.code() == code).unwrap();
        told
    };
    let check = Check::new(&script);
    assert!(!tells(&check, "TZ521") && !tells(&check, "TZ611"));
    let check = check.payload(FOLDER);
    assert!(tells(&check, "TZ521") && !tells(&check, "TZ611"));
    let previous = write("previous.xml", &all.replace("3.txt", "5.txt"));
    assert!(tells(&Check::new(&script).previous(previous), "TZ611"));
}

#[test]
fn library_forgets_who_watched_a_run() {
    let mut host = Host::new();
    let mut watcher = Watcher::default();
    let mut trace = Trace::default();
    host.load(&one_caution()).unwrap();
    host.context.prepare(Mode::Install).observer(&mut watcher).tracer(&mut trace).run().unwrap();
    let heard = (watcher.updates.len(), trace.calls.len());

    let (library, raw) = (temz::library().unwrap(), host.context.as_raw());
    // Safe: the context lives, and a run's outcome may be null.
    let status = unsafe { (library.temz_run)(raw, Mode::Install, std::ptr::null_mut()) };

    assert_eq!(status, Status::OK);
    assert_eq!((watcher.updates.len(), trace.calls.len()), heard);
}

/// Lets a copy of this program elsewhere make one of the tests that are for it.
fn expect_elsewhere(folder: &str, test: &str) {
    let _alone = alone();
    let program = Path::new(folder).join("elsewhere.exe");
    fs::create_dir_all(folder).unwrap();
    fs::copy(env::current_exe().unwrap(), &program).unwrap();
    let told = Command::new(&program).args(["--exact", "--ignored", test]).output().unwrap();
    fs::remove_file(program).unwrap();
    assert!(String::from_utf8_lossy(&told.stdout).contains("1 passed"), "{:?}", told);
}

#[test]
fn only_a_library_beside_the_program_is_loaded() {
    // One lies in the current directory.
    expect_elsewhere(r"C:\temz-rust-elsewhere", "wrapper::missing_library_is_told");
    fs::remove_dir(r"C:\temz-rust-elsewhere").unwrap();
}

#[test]
#[ignore = "for a program without the library beside it"]
fn missing_library_is_told() {
    match Context::new() {
        Err(Error::Library { path, cause }) => {
            assert_eq!(path, env::current_exe().unwrap().with_file_name("TEMZC.dll"));
            assert_eq!(cause.raw_os_error(), Some(126));
        }
        other => panic!("{:?}", other.map(drop)),
    }
    assert_eq!(Status::BUSY.to_string(), "TEMZ_BUSY");
}

#[test]
fn library_of_another_version_is_refused() {
    expect_elsewhere("other-version", "wrapper::other_version_is_told");
}

#[test]
#[ignore = "for a program beside a library that says VERSION_MISMATCH to everything"]
fn other_version_is_told() {
    assert_eq!(status(Context::new()), Status::VERSION_MISMATCH);
    assert_eq!(status(temz::version()), Status::VERSION_MISMATCH);
}

#[test]
fn records_are_shown_by_their_fields() {
    let mut host = Host::new();
    host.load(&three_files()).unwrap();
    let shown = format!("{:?}", host.run(Mode::Install).unwrap());
    assert!(shown.starts_with("Outcome { result: 0, restart: false, progress: 66, action: Action"));
    assert!(shown.contains("code: TEMZ_ACTION_COPY_FILE, text1: \"3.txt\""), "{}", shown);
    assert!(app("3.txt").exists());
    assert_eq!(status(host.run(Mode::Uninstall)), Status::OK);
}

#[test]
fn readme_shows_the_smallest_example() {
    let readme = include_str!("../README.md").replace('\r', "");
    let example = include_str!("../example/smallest.rs").replace('\r', "");
    assert!(readme.contains(&format!("```rust\n{}```\n", example)));
}
