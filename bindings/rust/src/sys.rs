//! The raw declarations: what `temz.h` says, in its own names and with its own rules, for whoever
//! needs more than the crate gives. The numbers are types of their own, which may take values that
//! a newer library knows and this crate doesn't.

#![allow(non_camel_case_types)]

use std::ffi::{c_void, CStr};
use std::fmt;

/// The version of the header that this is, which is the crate's: major, minor and patch, 8, 12 and
/// 12 bits.
pub const VERSION: u32 = number(env!("CARGO_PKG_VERSION_MAJOR")) << 24
    | number(env!("CARGO_PKG_VERSION_MINOR")) << 12
    | number(env!("CARGO_PKG_VERSION_PATCH"));

const fn number(digits: &str) -> u32 {
    let digits = digits.as_bytes();
    let mut number = 0;
    let mut i = 0;
    while i < digits.len() {
        number = number * 10 + (digits[i] - b'0') as u32;
        i += 1;
    }
    number
}

/// The characters of a record's text, the terminator included.
pub const TEXT_LENGTH: usize = 512;

/// A type of numbers that the library gives. The header calls each by the prefix and its name here.
macro_rules! numbers {
    ($(#[$note:meta])* $type:ident: $number:ty, $prefix:literal {
        $($(#[$of_value:meta])* $name:ident = $value:literal,)*
    }) => {
        $(#[$note])*
        #[repr(transparent)]
        #[derive(Clone, Copy, PartialEq, Eq, Hash)]
        pub struct $type(pub $number);

        #[allow(missing_docs)]
        impl $type {
            $($(#[$of_value])* pub const $name: $type = $type($value);)*

            /// Those that this crate knows, as the header calls them.
            pub const ALL: &'static [(&'static str, $type)] =
                &[$((concat!($prefix, stringify!($name)), $type::$name)),*];
        }

        impl fmt::Debug for $type {
            fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
                match Self::ALL.iter().find(|(_, value)| value == self) {
                    Some((name, _)) => f.write_str(name),
                    None => write!(f, "{}({})", stringify!($type), self.0),
                }
            }
        }
    };
}

/// The same for numbers that the library is given, of which there are no others.
macro_rules! choices {
    ($(#[$note:meta])* $type:ident, $prefix:literal {
        $($(#[$of_value:meta])* $name:ident = $value:literal,)*
    }) => {
        $(#[$note])*
        #[repr(i32)]
        #[derive(Clone, Copy, Debug, PartialEq, Eq, Hash)]
        pub enum $type {
            $($(#[$of_value])* $name = $value,)*
        }

        impl $type {
            /// All of them; the header calls them by the prefix and their names in capitals.
            pub const ALL: &'static [(&'static str, $type)] =
                &[$((concat!($prefix, stringify!($name)), $type::$name)),*];
        }
    };
}

numbers! {
    /// What a function answers.
    Status: i32, "TEMZ_" {
        OK = 0,
        RUN_FAILED = 1,
        STOPPED = 2,
        LOAD_FAILED = 3,
        NOT_FOUND = 4,
        BUFFER_TOO_SMALL = 5,
        NO_MEMORY = 6,
        NULL_ARGUMENT = 7,
        BAD_CONTEXT = 8,
        BAD_SIZE = 9,
        BAD_MODE = 10,
        NOT_LOADED = 11,
        ALREADY_LOADED = 12,
        IN_CALLBACK = 13,
        BUSY = 14,
        VERSION_MISMATCH = 15,
        INTERNAL = 16,
        NOT_READABLE = 17,
        BAD_VALUE = 18,
    }
}

choices! {
    /// What a run does with the product.
    Mode, "TEMZ_" {
        /// Puts it on the machine.
        Install = 0,
        /// Takes it away.
        Uninstall = 1,
        /// Replaces what is there by this version.
        Upgrade = 2,
    }
}

choices! {
    /// Whether a run goes on.
    Next, "TEMZ_" {
        /// The run goes on.
        Continue = 0,
        /// The run ends here; what was done before stays.
        Stop = 1,
    }
}

choices! {
    /// What becomes of a vital action that has failed.
    Decision, "TEMZ_" {
        /// It is carried out once more, at once and from its beginning.
        Retry = 0,
        /// The run ends; what was done before stays.
        Abort = 1,
        /// The run goes on as if the action had succeeded.
        Ignore = 2,
    }
}

numbers! {
    /// What is done, or has failed.
    Code: u32, "TEMZ_" {
        /// Of a failure: the message alone tells it.
        ERROR_MESSAGE = 1,
        ACTION_CONDITION = 2,
        ACTION_COPY_FILE = 3,
        ACTION_DELETE_FILE = 4,
        ACTION_STOP_SERVICE = 5,
        ACTION_START_SERVICE = 6,
        ACTION_REMOVE_SERVICE = 7,
        ACTION_SHORTCUT = 8,
        /// Of a failure: a shortcut couldn't be removed.
        ERROR_REMOVE_SHORTCUT = 9,
        ACTION_CUSTOM_ACTION = 10,
        ACTION_SHELL_EXCUTE = 11,
        ACTION_CREATE_REGISTRY_KEY = 12,
        ACTION_REMOVE_REGISTRY_KEY = 13,
        ACTION_REGISTRY_VALUE = 14,
        ACTION_REMOVE_DIRECTORY = 15,
        ACTION_CAUTION = 16,
    }
}

numbers! {
    /// How much a finding weighs.
    Severity: i32, "TEMZ_SEVERITY_" {
        /// A run will fail, or end the process, at least on some machines.
        ERROR = 0,
        /// Surely not what was meant.
        WARNING = 1,
        /// Worth a look.
        NOTE = 2,
    }
}

numbers! {
    /// What a step of a plan tells.
    StepKind: u32, "TEMZ_STEP_" {
        /// An element is reached that only holds others.
        GROUP = 1,
        /// An element is reached that acts; what it does follows.
        ELEMENT = 2,
        /// A condition has been decided.
        CONDITION = 3,
        /// A file has been looked for.
        SEARCH = 4,
        /// An action is announced.
        ACTION = 5,
        /// Something would change.
        CHANGE = 6,
        /// Something would fail.
        FAILURE = 7,
        /// An element is left out in this mode.
        LEFT_OUT = 8,
    }
}

numbers! {
    /// What a step of a plan would change.
    Change: u32, "TEMZ_CHANGE_" {
        FILE_ADDED = 1,
        FILE_REPLACED = 2,
        FILE_REMOVED = 3,
        FILE_AT_RESTART = 4,
        ATTRIBUTES = 5,
        DIRECTORY_ADDED = 6,
        DIRECTORY_REMOVED = 7,
        KEY_ADDED = 8,
        KEY_REMOVED = 9,
        VALUE_SET = 10,
        SERVICE_STARTED = 11,
        SERVICE_STOPPED = 12,
        SERVICE_REMOVED = 13,
        SERVICE_CHANGED = 14,
        LINK_WRITTEN = 15,
        PROCESS_ENDED = 16,
        PROGRAM_STARTED = 17,
        LIBRARY_LOADED = 18,
        ACTION_CALLED = 19,
    }
}

numbers! {
    /// What a failure means to a run.
    Fate: u32, "TEMZ_FAILURE_" {
        /// The observer is asked, and a run ends unless it goes on.
        VITAL = 0,
        /// A run goes on.
        NOT_VITAL = 1,
        /// A run ends unasked, and the plan with it.
        ENDS_RUN = 2,
    }
}

/// Declares a record as it lies in memory, and a list of the fields for who compares it.
macro_rules! records {
    ($($(#[$note:meta])* $record:ident { $($field:ident: $type:ty,)* })*) => {
        $(
            $(#[$note])*
            #[repr(C)]
            #[derive(Clone, Copy)]
            #[allow(missing_docs)]
            pub struct $record {
                $(pub $field: $type,)*
            }
        )*

        /// Where each field of each record lies: the record's name, the field's, its offset and its
        /// size. The last row of a record has no field, but the record's size and its alignment.
        pub fn layout() -> Vec<(&'static str, Option<&'static str>, usize, usize)> {
            let mut rows = Vec::new();
            $(
                let memory = std::mem::MaybeUninit::<$record>::uninit();
                let record = memory.as_ptr();
                $(
                    // Safe: no reference is made, and the place is within `memory`.
                    let field = unsafe { std::ptr::addr_of!((*record).$field) };
                    let offset = field as usize - record as usize;
                    let size = std::mem::size_of::<$type>();
                    rows.push((stringify!($record), Some(stringify!($field)), offset, size));
                )*
                let size = std::mem::size_of::<$record>();
                rows.push((stringify!($record), None, size, std::mem::align_of::<$record>()));
            )*
            rows
        }
    };
}

/// One unit of UTF-16.
pub type temz_char = u16;

/// A callback that is told a record.
pub type Tell<Record> = unsafe extern "C" fn(user: *mut c_void, record: *const Record);

/// A callback that is asked about a record.
pub type Ask<Record, Answer> =
    unsafe extern "C" fn(user: *mut c_void, record: *const Record) -> Answer;

records! {
    temz_action {
        code: Code,
        text1: [temz_char; TEXT_LENGTH],
        text2: [temz_char; TEXT_LENGTH],
    }

    temz_error {
        code: Code,
        system_error: u32,
        text1: [temz_char; TEXT_LENGTH],
        text2: [temz_char; TEXT_LENGTH],
        message: [temz_char; TEXT_LENGTH],
    }

    temz_outcome {
        size: u32,
        result: i32,
        restart: u32,
        progress: u32,
        action: temz_action,
        error: temz_error,
    }

    temz_observer {
        size: u32,
        user: *mut c_void,
        update: Option<Ask<temz_outcome, Next>>,
        ask: Option<Ask<temz_outcome, Decision>>,
    }

    temz_call {
        size: u32,
        failed: u32,
        system_error: u32,
        argument_count: u32,
        group: *const temz_char,
        name: *const temz_char,
        arguments: *const *const temz_char,
        result: *const temz_char,
        duration: u64,
        changes: u32,
    }

    temz_tracer {
        size: u32,
        user: *mut c_void,
        call: Option<Tell<temz_call>>,
        permit: Option<Ask<temz_call, Next>>,
    }

    temz_finding {
        size: u32,
        severity: Severity,
        ends_run: u32,
        line: u32,
        column: u32,
        length: u32,
        code: *const temz_char,
        file: *const temz_char,
        text: *const temz_char,
        help: *const temz_char,
        source_line: *const temz_char,
    }

    temz_finding_kind {
        size: u32,
        severity: Severity,
        code: *const temz_char,
        meaning: *const temz_char,
        remedy: *const temz_char,
    }

    temz_check_request {
        size: u32,
        script: *const temz_char,
        payload: *const temz_char,
        previous: *const temz_char,
        user: *mut c_void,
        finding: Option<Tell<temz_finding>>,
    }

    temz_step {
        size: u32,
        kind: StepKind,
        depth: u32,
        line: u32,
        element: *const temz_char,
        id: *const temz_char,
        object: *const temz_char,
        detail: *const temz_char,
        before: *const temz_char,
        after: *const temz_char,
        message: *const temz_char,
        bytes: u64,
        bytes_before: u64,
        code: u32,
        system_error: u32,
        holds: u32,
        fate: Fate,
        same_content: u32,
        unforeseeable: u32,
        elements: u32,
        files: u32,
    }

    temz_assumption {
        name: *const temz_char,
        value: *const temz_char,
    }

    temz_planner {
        size: u32,
        assumption_count: u32,
        assumptions: *const temz_assumption,
        user: *mut c_void,
        step: Option<Tell<temz_step>>,
    }
}

/// One engine object.
#[repr(C)]
pub struct temz_context {
    opaque: [u8; 0],
}

/// The functions of the library, as they are bound when it has been loaded.
macro_rules! functions {
    ($(fn $name:ident($($argument:ident: $type:ty),*) -> $result:ty;)*) => {
        /// The functions of the library, by their names.
        #[allow(missing_docs)]
        pub struct Functions {
            $(pub $name: unsafe extern "C" fn($($argument: $type),*) -> $result,)*
        }

        impl Functions {
            /// The names of all.
            pub const NAMES: &'static [&'static str] = &[$(stringify!($name)),*];

            /// Takes each function from where `find` finds it, or tells the name of one that it
            /// doesn't.
            ///
            /// # Safety
            /// What is found must be the library's function of this name, and stay.
            pub unsafe fn bind(
                find: impl Fn(&CStr) -> Option<unsafe extern "C" fn()>,
            ) -> Result<Functions, &'static str> {
                Ok(Functions {
                    $($name: {
                        let name = concat!(stringify!($name), "\0").as_bytes();
                        let found = CStr::from_bytes_with_nul(name).ok().and_then(&find);
                        let function = found.ok_or(stringify!($name))?;
                        // Safe: the caller vouches for it.
                        unsafe { std::mem::transmute::<unsafe extern "C" fn(), _>(function) }
                    },)*
                })
            }
        }
    };
}

functions! {
    fn temz_version() -> u32;
    fn temz_check_version(header_version: u32) -> Status;
    fn temz_status_text(status: Status) -> *const temz_char;
    fn temz_create(context: *mut *mut temz_context) -> Status;
    fn temz_free(context: *mut temz_context) -> Status;
    fn temz_load(context: *mut temz_context, path: *const temz_char) -> Status;
    fn temz_unload(context: *mut temz_context) -> Status;
    fn temz_set_observer(context: *mut temz_context, observer: *const temz_observer) -> Status;
    fn temz_set_tracer(context: *mut temz_context, tracer: *const temz_tracer) -> Status;
    fn temz_set_action_value(context: *mut temz_context, value: u64) -> Status;
    fn temz_run(context: *mut temz_context, mode: Mode, outcome: *mut temz_outcome) -> Status;
    fn temz_plan(
        context: *mut temz_context, mode: Mode, planner: *const temz_planner,
        outcome: *mut temz_outcome
    ) -> Status;
    fn temz_get_outcome(context: *mut temz_context, outcome: *mut temz_outcome) -> Status;
    fn temz_last_failure(
        context: *mut temz_context, buffer: *mut temz_char, capacity: usize, length: *mut usize
    ) -> Status;
    fn temz_get_variable(
        context: *mut temz_context, name: *const temz_char, buffer: *mut temz_char,
        capacity: usize, length: *mut usize
    ) -> Status;
    fn temz_get_directory(
        context: *mut temz_context, id: *const temz_char, buffer: *mut temz_char,
        capacity: usize, length: *mut usize
    ) -> Status;
    fn temz_check(request: *const temz_check_request) -> Status;
    fn temz_get_finding_kind(index: u32, kind: *mut temz_finding_kind) -> Status;
    fn temz_schema(buffer: *mut temz_char, capacity: usize, length: *mut usize) -> Status;
}

/// The size of a record, as its first field tells it.
pub(crate) const fn size_of<Record>() -> u32 {
    std::mem::size_of::<Record>() as u32
}
