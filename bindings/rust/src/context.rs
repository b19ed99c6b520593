//! A script and what can be asked of it.

use crate::error::succeeded;
use crate::library::library;
use crate::sys::{temz_context, Functions, Mode, Status};
use crate::text::{given, readable, terminated};
use crate::{Error, Outcome, Result, Run};
use std::ops::Deref;
use std::path::{Path, PathBuf};
use std::ptr;
use std::sync::{Mutex, PoisonError};

/// What can be asked and set of a [`Context`] at any time, also from inside a callback of a run,
/// which is given one.
pub struct Handle {
    pub(crate) functions: &'static Functions,
    pub(crate) raw: *mut temz_context,
}

impl Handle {
    /// The outcome of the last run or plan of the loaded script; inside a callback, the state of the
    /// one that is going on; before the first run all is 0.
    pub fn outcome(&self) -> Result<Outcome> {
        let mut outcome = Outcome::empty();
        // Safe: the context lives, and the record is as large as it says.
        succeeded(unsafe { (self.functions.temz_get_outcome)(self.raw, &mut outcome.0) })?;
        Ok(outcome)
    }

    /// Why the last of loading, of assuming for a plan, and of the questions for a variable or a
    /// directory failed; empty when it succeeded, or failed without a word. Errors tell it, too.
    pub fn last_failure(&self) -> Result<String> {
        // Safe: the context lives, and the buffer has this capacity.
        let (status, text) = given(|buffer, capacity, length| unsafe {
            (self.functions.temz_last_failure)(self.raw, buffer, capacity, length)
        });
        succeeded(status)?;
        Ok(readable(text))
    }

    /// The text of a string variable of the script.
    pub fn variable(&self, name: &str) -> Result<String> {
        let name = terminated(name)?;
        // Safe: the context lives, the name is terminated, and the buffer has this capacity.
        let (status, text) = given(|buffer, capacity, length| unsafe {
            (self.functions.temz_get_variable)(self.raw, name.as_ptr(), buffer, capacity, length)
        });
        self.explained(status)?;
        Ok(readable(text))
    }

    /// The path of the `Directory` element with this Id, or of the system's folder of this name; it
    /// ends in a separator, unless it is empty.
    pub fn directory(&self, id: &str) -> Result<PathBuf> {
        let id = terminated(id)?;
        // Safe: the context lives, the id is terminated, and the buffer has this capacity.
        let (status, path) = given(|buffer, capacity, length| unsafe {
            (self.functions.temz_get_directory)(self.raw, id.as_ptr(), buffer, capacity, length)
        });
        self.explained(status)?;
        Ok(path.into())
    }

    /// Sets the value that custom actions find in their parameter record; 0 at first. A run takes
    /// the one that stands when it begins.
    pub fn set_action_value(&self, value: u64) -> Result<()> {
        // Safe: the context lives.
        succeeded(unsafe { (self.functions.temz_set_action_value)(self.raw, value) })
    }

    /// The context itself, for the functions of [`library`].
    pub fn as_raw(&self) -> *mut temz_context {
        self.raw
    }

    /// Success, or the status with what the library tells about it.
    pub(crate) fn explained(&self, status: Status) -> Result<()> {
        match status {
            Status::LOAD_FAILED | Status::NOT_FOUND | Status::BAD_VALUE => {
                Err(Error::Status { status, reason: self.last_failure().unwrap_or_default() })
            }
            status => succeeded(status),
        }
    }
}

/// One engine object: at most one script, with its variables and its last outcome. It can do all
/// that its [`Handle`] can, and what isn't for callbacks.
///
/// A process makes one run at a time. A context can be given to another thread; while one runs or
/// plans, all others answer [`Status::BUSY`] on other threads, and [`Status::IN_CALLBACK`] inside its
/// callbacks.
pub struct Context {
    handle: Handle,
}

// Safe: a context belongs to one thread at a time, whichever that is.
unsafe impl Send for Context {}

impl Context {
    /// A context without a script. The first one loads the library.
    pub fn new() -> Result<Context> {
        let functions = library()?;
        let mut raw = ptr::null_mut();
        // Safe: there is a place for the context.
        succeeded(unsafe { (functions.temz_create)(&mut raw) })?;
        Ok(Context { handle: Handle { functions, raw } })
    }

    /// Reads a script. A relative path counts from the current directory. The path is converted to
    /// the active code page of the process, so one that it can't express isn't found.
    pub fn load(&mut self, path: impl AsRef<Path>) -> Result<()> {
        let path = terminated(path.as_ref())?;
        // Safe: the context lives, and the path is terminated.
        let status = unsafe { (self.functions.temz_load)(self.raw, path.as_ptr()) };
        self.explained(status)
    }

    /// Releases the script; without one it does nothing.
    pub fn unload(&mut self) -> Result<()> {
        // Safe: the context lives.
        succeeded(unsafe { (self.functions.temz_unload)(self.raw) })
    }

    /// A run or a plan of the script in a mode, to be watched and then carried out.
    pub fn prepare(&mut self, mode: Mode) -> Run<'_> {
        Run::new(&self.handle, mode)
    }
}

impl Deref for Context {
    type Target = Handle;

    fn deref(&self) -> &Handle {
        &self.handle
    }
}

/// Inside a callback, or beside a run on another thread, the library keeps the context. It is freed
/// with the next one that is dropped, as is in its time the one that runs.
impl Drop for Context {
    fn drop(&mut self) {
        static KEPT: Mutex<Vec<Kept>> = Mutex::new(Vec::new());
        let mut kept = KEPT.lock().unwrap_or_else(PoisonError::into_inner);
        kept.push(Kept(self.raw));
        // Safe: they live, and what has been freed leaves the list.
        kept.retain(|context| unsafe {
            matches!((self.functions.temz_free)(context.0), Status::IN_CALLBACK | Status::BUSY)
        });
    }
}

/// A context that nobody but the list of these has any more.
struct Kept(*mut temz_context);
// Safe: a context belongs to one thread at a time, whichever that is.
unsafe impl Send for Kept {}
