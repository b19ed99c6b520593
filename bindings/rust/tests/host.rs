//! What stands around each test, and hosts that do what a test says and note what they hear.

use std::fmt::Write;
use std::path::Path;
use std::sync::{Mutex, MutexGuard, PoisonError};
use std::time::{Duration, Instant};
use std::{env, fs, thread};
use temz::{Call, Code, Context, Decision, Handle, Mode, Next, Outcome, Result, Status, Step};

/// Where the scripts install.
pub const FOLDER: &str = r"C:\temz-rust";

/// A script with a sequence of its own, some variables, a component of three files, and one of a
/// file that can't be had.
pub fn script(sequence: &str) -> String {
    format!(
        r"<Script><Variable Id='TEXT' Type='string' Value='a text'/>
        <Variable Id='EMPTY' Type='string' Value=''/>
        <Variable Id='NUMBER' Type='int' Value='7'/><Product Id='P'>
        <Directory Id='APPLICATIONROOTDIRECTORY' Path='{}\app'><Component Id='Files'>
        <File Name='1.txt' Source='payload\greeter.txt'/>
        <File Name='2.txt' Source='payload\manual.txt'/>
        <File Name='3.txt' Source='payload\changes.txt'/></Component>
        <Component Id='Missing'><File Name='4.txt' Source='payload\missing.txt'/></Component>
        </Directory>
        <InstallExecuteSequence>{}</InstallExecuteSequence></Product></Script>",
        FOLDER, sequence
    )
}

pub fn three_files() -> String {
    script("<Feature><ComponentRef Id='Files'/></Feature>")
}

/// One announcement, which does nothing.
pub const CAUTION: &str = "<Fragment><Caution Title='Mind the gap'/></Fragment>";

pub fn one_caution() -> String {
    script(CAUTION)
}

/// An action that answers what the host's action says.
pub const ACTION: &str = "<Fragment><CustomAction DllFile='temz_test_actions.dll' \
    DllEntry='answer' Return='check' Title='A title'/></Fragment>";

pub fn one_action() -> String {
    script(ACTION)
}

/// What a test and its action library tell each other, as tests/support/ActionCall.h has it.
#[repr(C)]
pub struct ActionCall {
    pub result: u32,
    pub text: *const u16,
    pub text_length: usize,
    pub calls: u32,
    pub params: [u8; 280],
    message: [u16; 1024],
    capacity: u32,
    thread: u32,
}

/// A context of the test's own, with nobody else beside it.
pub struct Host {
    pub context: Context,
    pub action: Box<ActionCall>,
    _alone: MutexGuard<'static, ()>,
}

/// A process makes one run at a time, and has one current directory.
pub fn alone() -> MutexGuard<'static, ()> {
    static ALONE: Mutex<()> = Mutex::new(());
    let alone = ALONE.lock().unwrap_or_else(PoisonError::into_inner);
    env::set_current_dir(env::current_exe().unwrap().parent().unwrap()).unwrap();
    alone
}

impl Host {
    pub fn new() -> Host {
        let _alone = alone();
        fs::create_dir_all(FOLDER).unwrap();
        let context = Context::new().unwrap();
        // Safe: all of its fields may be 0.
        let action: Box<ActionCall> = Box::new(unsafe { std::mem::zeroed() });
        context.set_action_value(&*action as *const ActionCall as u64).unwrap();
        Host { context, action, _alone }
    }

    /// Writes a script and loads it.
    pub fn load(&mut self, script: &str) -> Result<()> {
        self.context.load(write("script.xml", script))
    }

    pub fn run(&mut self, mode: Mode) -> Result<Outcome> {
        self.context.prepare(mode).run()
    }

    pub fn watched(&mut self, mode: Mode, watcher: &mut Watcher) -> Result<Outcome> {
        self.context.prepare(mode).observer(watcher).run()
    }

    pub fn traced(&mut self, mode: Mode, trace: &mut Trace) -> Result<Outcome> {
        self.context.prepare(mode).tracer(trace).run()
    }

    pub fn plan(&mut self, mode: Mode, steps: &mut Vec<HeardStep>) -> Result<Outcome> {
        self.context.prepare(mode).plan(&[], |_, step| steps.push(HeardStep::of(step)))
    }

    pub fn let_action_fail(&mut self) {
        static TEXT: [u16; 14] = ascii(b"It went wrong.");
        self.action.result = 1234;
        self.action.text = TEXT.as_ptr();
        self.action.text_length = TEXT.len();
        self.load(&one_action()).unwrap();
    }

    /// Which of the three files are there.
    pub fn files(&self) -> [bool; 3] {
        ["1.txt", "2.txt", "3.txt"].map(|name| app(name).exists())
    }
}

/// Once a test is over, the library must still be good enough to clear up behind it.
impl Drop for Host {
    fn drop(&mut self) {
        if thread::panicking() {
            let _ = fs::remove_dir_all(FOLDER);
            return;
        }
        self.context.unload().unwrap();
        self.load(&script(&format!("<Fragment><RemoveDirectory Path='{}'/></Fragment>", FOLDER)))
            .unwrap();
        // Wine's desktop inherits the files of the first program that wants one, for some seconds.
        let patience = Instant::now() + Duration::from_secs(20);
        while self.run(Mode::Install).is_err() {
            assert!(Instant::now() < patience, "{} can't be removed.", FOLDER);
            thread::sleep(Duration::from_millis(50));
        }
        assert!(!Path::new(FOLDER).exists());
    }
}

const fn ascii<const LENGTH: usize>(text: &[u8; LENGTH]) -> [u16; LENGTH] {
    let mut units = [0; LENGTH];
    let mut i = 0;
    while i < LENGTH {
        units[i] = text[i] as u16;
        i += 1;
    }
    units
}

/// A path below the directory into which the scripts install.
pub fn app(name: &str) -> std::path::PathBuf {
    Path::new(FOLDER).join("app").join(name)
}

/// Writes a script into the folder, in the code page of the process.
pub fn write(name: &str, script: &str) -> std::path::PathBuf {
    let path = Path::new(FOLDER).join(name);
    let bytes: Vec<u8> = script.chars().map(|c| u8::try_from(c).unwrap()).collect();
    fs::write(&path, bytes).unwrap();
    path
}

/// The status of a call that the library has answered.
pub fn status<T>(result: Result<T>) -> Status {
    match result {
        Ok(_) => Status::OK,
        Err(error) => error.status().expect("The library was asked."),
    }
}

/// What two records have in them.
pub fn same(one: &Outcome, other: &Outcome) -> bool {
    format!("{:?}", one) == format!("{:?}", other)
}

type Hook<'a, Record> = Option<Box<dyn FnMut(&Handle, &Record) + 'a>>;

/// An observer that answers what a test says.
#[derive(Default)]
pub struct Watcher<'a> {
    /// What it does inside.
    pub in_update: Hook<'a, Outcome>,
    pub in_ask: Hook<'a, Outcome>,
    /// Which update, counted from 1, it answers with a stop.
    pub stop_at: usize,
    /// What it answers to each question; behind the last it aborts.
    pub answers: Vec<Decision>,

    pub updates: Vec<Outcome>,
    pub asks: Vec<Outcome>,
}

impl temz::Observer for Watcher<'_> {
    fn update(&mut self, context: &Handle, now: &Outcome) -> Next {
        self.updates.push(now.clone());
        if let Some(hook) = &mut self.in_update {
            hook(context, now);
        }
        stop_if(self.updates.len() == self.stop_at)
    }

    fn ask(&mut self, context: &Handle, now: &Outcome) -> Decision {
        self.asks.push(now.clone());
        if let Some(hook) = &mut self.in_ask {
            hook(context, now);
        }
        *self.answers.get(self.asks.len() - 1).unwrap_or(&Decision::Abort)
    }
}

fn stop_if(wanted: bool) -> Next {
    if wanted {
        Next::Stop
    } else {
        Next::Continue
    }
}

/// A call as the tracer heard it.
pub struct HeardCall {
    pub group: String,
    pub name: String,
    pub arguments: Vec<String>,
    pub result: String,
    pub failed: bool,
    pub system_error: u32,
    pub changes: bool,
}

impl HeardCall {
    fn of(call: &Call) -> Self {
        HeardCall {
            group: call.group().to_string(),
            name: call.name().to_string(),
            arguments: call.arguments().map(|argument| argument.to_string()).collect(),
            result: call.result().to_string(),
            failed: call.failed(),
            system_error: call.system_error(),
            changes: call.changes(),
        }
    }
}

/// A tracer that answers what a test says.
#[derive(Default)]
pub struct Trace<'a> {
    /// What it does inside.
    pub in_call: Hook<'a, Call>,
    pub in_permit: Hook<'a, Call>,
    /// Which permit, counted from 1, it refuses.
    pub refuse_at: usize,

    pub calls: Vec<HeardCall>,
    pub permits: Vec<HeardCall>,
}

impl temz::Tracer for Trace<'_> {
    fn call(&mut self, context: &Handle, call: &Call) {
        self.calls.push(HeardCall::of(call));
        if let Some(hook) = &mut self.in_call {
            hook(context, call);
        }
    }

    fn permit(&mut self, context: &Handle, call: &Call) -> Next {
        self.permits.push(HeardCall::of(call));
        if let Some(hook) = &mut self.in_permit {
            hook(context, call);
        }
        stop_if(self.permits.len() == self.refuse_at)
    }
}

impl Trace<'_> {
    /// Where the calls of this name stand.
    pub fn places(&self, name: &str) -> Vec<usize> {
        (0..self.calls.len()).filter(|&i| self.calls[i].name == name).collect()
    }

    pub fn named(&self, name: &str) -> Vec<&HeardCall> {
        self.calls.iter().filter(|call| call.name == name).collect()
    }
}

/// A step as it was told, as one line: depth, kind, element and object, and what the kind has more.
pub struct HeardStep {
    pub line: String,
    pub code: Option<Code>,
    pub text: String,
}

impl HeardStep {
    pub fn of(step: &Step) -> Self {
        let mut line =
            format!("{} {:?} {} {}", step.depth(), step.kind(), step.element(), step.object());
        if step.kind() == temz::StepKind::CONDITION || step.kind() == temz::StepKind::SEARCH {
            write!(line, " [{}] {}", step.detail(), step.holds()).unwrap();
        }
        if step.elements() > 0 {
            write!(line, " without {}, {} files", step.elements(), step.files()).unwrap();
        }
        if let Some(change) = step.change() {
            write!(line, " {:?}", change).unwrap();
        }
        if step.kind() == temz::StepKind::FAILURE {
            write!(line, " {:?}", step.fate()).unwrap();
        }
        HeardStep { line, code: step.code(), text: step.message().to_string() }
    }
}
