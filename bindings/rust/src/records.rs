//! The library's records, as the host may see them. Those of a callback end with it.

use crate::sys::{self, temz_char, Change, Code, Fate, Severity, StepKind};
use crate::text::Text;
use std::fmt;
use std::time::Duration;

/// What a field of a record is to the host.
trait Field<'a, Raw> {
    fn of(raw: &'a Raw) -> Self;
}

impl<Number: Copy> Field<'_, Number> for Number {
    fn of(raw: &Number) -> Number {
        *raw
    }
}

impl Field<'_, u32> for bool {
    fn of(raw: &u32) -> bool {
        *raw != 0
    }
}

impl Field<'_, u64> for Duration {
    fn of(raw: &u64) -> Duration {
        Duration::from_nanos(*raw)
    }
}

impl<'a> Field<'a, [temz_char; sys::TEXT_LENGTH]> for Text<'a> {
    fn of(raw: &'a [temz_char; sys::TEXT_LENGTH]) -> Text<'a> {
        Text::until_zero(raw)
    }
}

impl<'a> Field<'a, *const temz_char> for Text<'a> {
    fn of(raw: &'a *const temz_char) -> Text<'a> {
        // Safe: only the library makes records with texts elsewhere, which live as long as these.
        unsafe { Text::at(*raw) }
    }
}

impl<'a> Field<'a, sys::temz_action> for &'a Action {
    fn of(raw: &'a sys::temz_action) -> &'a Action {
        // Safe: one is nothing but the other.
        unsafe { &*(raw as *const sys::temz_action).cast() }
    }
}

impl<'a> Field<'a, sys::temz_error> for &'a Failure {
    fn of(raw: &'a sys::temz_error) -> &'a Failure {
        // Safe: one is nothing but the other.
        unsafe { &*(raw as *const sys::temz_error).cast() }
    }
}

macro_rules! record {
    ($(#[$note:meta])* $record:ident($raw:ident) {
        $($(#[$of_field:meta])* $field:ident -> $type:ty,)*
    }) => {
        $(#[$note])*
        #[repr(transparent)]
        pub struct $record(pub(crate) sys::$raw);

        impl $record {
            $(
                $(#[$of_field])*
                pub fn $field(&self) -> $type {
                    Field::of(&self.0.$field)
                }
            )*
        }

        impl fmt::Debug for $record {
            fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
                f.debug_struct(stringify!($record))
                    $(.field(stringify!($field), &self.$field()))*
                    .finish()
            }
        }
    };
}

record! {
    /// The action that is about to be carried out, or was the last.
    #[derive(Clone)]
    Action(temz_action) {
        /// What it is; 0 before the first.
        code -> Code,
        /// Normally its object.
        text1 -> Text<'_>,
        /// A further text, often empty.
        text2 -> Text<'_>,
    }
}

record! {
    /// The last failure. It doesn't tell whether a run has succeeded: what was ignored stands here,
    /// too.
    #[derive(Clone)]
    Failure(temz_error) {
        /// The action that failed, or [`Code::ERROR_MESSAGE`].
        code -> Code,
        /// The system's or the action's number; 0 or 0xFFFFFFFF where there is none.
        system_error -> u32,
        /// The object of the action.
        text1 -> Text<'_>,
        /// A further text of the action.
        text2 -> Text<'_>,
        /// Readable; may be empty or end in a line end.
        message -> Text<'_>,
    }
}

record! {
    /// What a run has come to: while it goes on, in the callbacks; afterwards, its end.
    #[derive(Clone)]
    Outcome(temz_outcome) {
        /// Of a run that has ended: 0, -1, or the code of the action that failed; 0 when it was
        /// stopped.
        result -> i32,
        /// Whether a file waits for the next restart of the machine.
        restart -> bool,
        /// Percent of the run at the last action.
        progress -> u32,
        /// The last action that was announced.
        action -> &Action,
        /// The last failure.
        error -> &Failure,
    }
}

impl Outcome {
    /// One to be filled in.
    pub(crate) fn empty() -> Self {
        // Safe: all of its fields may be 0.
        let zeros = unsafe { std::mem::zeroed() };
        Outcome(sys::temz_outcome { size: sys::size_of::<sys::temz_outcome>(), ..zeros })
    }
}

record! {
    /// One call by which the engine changes or asks the machine, or a line of the engine's own log:
    /// then its group is "log", its name the level, and its only argument the line.
    Call(temz_call) {
        /// "file", "registry", "service", "log" and the like.
        group -> Text<'_>,
        /// "CopyFileW".
        name -> Text<'_>,
        /// The result as a text.
        result -> Text<'_>,
        /// Whether the call says that it failed.
        failed -> bool,
        /// The system's error code of a call that failed, else 0.
        system_error -> u32,
        /// How long it took.
        duration -> Duration,
        /// Whether the engine acts on the machine by it or has others act on it, or only asks.
        changes -> bool,
    }
}

impl Call {
    /// The arguments as texts: numbers in decimal, handles by what they were opened for.
    pub fn arguments(&self) -> impl ExactSizeIterator<Item = Text<'_>> {
        let count = self.0.argument_count as usize;
        // Safe: the library gives so many texts, which live as long as the record.
        (0..count).map(move |i| unsafe { Text::at(*self.0.arguments.add(i)) })
    }
}

record! {
    /// One thing that is wrong with a script. Lines and columns count from 1, columns and lengths in
    /// units of UTF-16; where all three are 0, the file as a whole is meant.
    Finding(temz_finding) {
        /// How much it weighs.
        severity -> Severity,
        /// Whether a run in one of the modes surely ends half-way because of this.
        ends_run -> bool,
        /// Where it is in the file.
        line -> u32,
        /// Where it is in the line.
        column -> u32,
        /// How long it is.
        length -> u32,
        /// "TZ203"; stays the same in all versions.
        code -> Text<'_>,
        /// The path of the script, as it was given, or of the previous one.
        file -> Text<'_>,
        /// What is wrong, in a sentence.
        text -> Text<'_>,
        /// How to mend it; may be empty.
        help -> Text<'_>,
        /// The whole line; empty for the file as a whole.
        source_line -> Text<'_>,
    }
}

/// What is known about a code of findings.
#[derive(Clone, Copy, Debug)]
pub struct FindingKind {
    /// How much it weighs.
    pub severity: Severity,
    /// "TZ203".
    pub code: Text<'static>,
    /// What is wrong, in a sentence.
    pub meaning: Text<'static>,
    /// How it is mended, in a sentence.
    pub remedy: Text<'static>,
}

record! {
    /// One step of a plan. What has no meaning for its kind is 0, false or empty.
    Step(temz_step) {
        /// What it tells.
        kind -> StepKind,
        /// Of the element in which it happens: 0 directly in the sequence.
        depth -> u32,
        /// Of the script, from 1, on which that element begins.
        line -> u32,
        /// The element's name: "File".
        element -> Text<'_>,
        /// Its `Id`, or empty.
        id -> Text<'_>,
        /// What it is about.
        object -> Text<'_>,
        /// Of a condition and a search the variables with their values, of a change where its
        /// content comes from, of an action and a failure a further text.
        detail -> Text<'_>,
        /// Of a change: what was there, for people; empty for nothing.
        before -> Text<'_>,
        /// Of a change: what is there then; of a search the version that the file must have.
        after -> Text<'_>,
        /// Of a failure: readable, may be empty or end in a line end.
        message -> Text<'_>,
        /// Of a change: what it takes on the disk.
        bytes -> u64,
        /// Of a change: what the thing took before.
        bytes_before -> u64,
        /// Of a failure: the system's or the action's number.
        system_error -> u32,
        /// Whether a condition is true or a file found.
        holds -> bool,
        /// Of a failure: what it means to a run.
        fate -> Fate,
        /// Whether a file is replaced by one of the same content, or a value set to what it is.
        same_content -> bool,
        /// Whether what a change does beyond this can't be foreseen.
        unforeseeable -> bool,
        /// How many elements are left out.
        elements -> u32,
        /// How many of these are files.
        files -> u32,
    }
}

impl Step {
    /// What would change, of a step that tells a change.
    pub fn change(&self) -> Option<Change> {
        (self.kind() == StepKind::CHANGE).then_some(Change(self.0.code))
    }

    /// What is announced or would fail, of a step that tells an action or a failure.
    pub fn code(&self) -> Option<Code> {
        matches!(self.kind(), StepKind::ACTION | StepKind::FAILURE).then_some(Code(self.0.code))
    }
}
