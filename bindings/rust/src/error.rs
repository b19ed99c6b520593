//! Why something couldn't be done.

use crate::library::library;
use crate::sys::Status;
use crate::text::Text;
use crate::Outcome;
use std::path::PathBuf;
use std::{error, fmt, io, result};

/// What a call gives, or why it couldn't.
pub type Result<T> = result::Result<T, Error>;

/// Why something couldn't be done.
#[derive(Debug)]
#[non_exhaustive]
pub enum Error {
    /// The run has failed, and this is what it has come to. What was done before stays.
    RunFailed(Box<Outcome>),
    /// The host has stopped the run. What was done before stays.
    Stopped(Box<Outcome>),
    /// The library has answered with another status than success.
    Status {
        /// The status.
        status: Status,
        /// What the library tells beyond it: why a script can't be loaded, which variable can't be
        /// assumed. Often empty.
        reason: String,
    },
    /// A text has a zero in it, at which the library would take it to end.
    ZeroInText,
    /// The library can't be loaded, or isn't one that this crate can use.
    Library {
        /// Where it should be.
        path: PathBuf,
        /// What is wrong.
        cause: io::Error,
    },
}

impl Error {
    /// The status that the library has answered with, if it was asked.
    pub fn status(&self) -> Option<Status> {
        match self {
            Error::RunFailed(_) => Some(Status::RUN_FAILED),
            Error::Stopped(_) => Some(Status::STOPPED),
            Error::Status { status, .. } => Some(*status),
            Error::ZeroInText | Error::Library { .. } => None,
        }
    }
}

impl From<Status> for Error {
    fn from(status: Status) -> Self {
        Error::Status { status, reason: String::new() }
    }
}

/// Success, or the status as an error.
pub(crate) fn succeeded(status: Status) -> Result<()> {
    match status {
        Status::OK => Ok(()),
        other => Err(other.into()),
    }
}

impl fmt::Display for Error {
    fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
        let sentence = |f: &mut fmt::Formatter, status: Status, reason: &str| match reason {
            "" => write!(f, "{}", status),
            reason => write!(f, "{} {}", status, reason.trim_end()),
        };
        match self {
            Error::RunFailed(outcome) => {
                let failure = outcome.error().message().to_string();
                sentence(f, Status::RUN_FAILED, &failure)
            }
            Error::Stopped(_) => sentence(f, Status::STOPPED, ""),
            Error::Status { status, reason } => sentence(f, *status, reason),
            Error::ZeroInText => f.write_str("A text has a zero in it."),
            Error::Library { path, cause } => {
                write!(f, "{} can't be used: {}", path.display(), cause)
            }
        }
    }
}

impl error::Error for Error {
    fn source(&self) -> Option<&(dyn error::Error + 'static)> {
        match self {
            Error::Library { cause, .. } => Some(cause),
            _ => None,
        }
    }
}

/// The library's text of the status.
impl fmt::Display for Status {
    fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
        match library() {
            // Safe: the text is the library's, which is never unloaded.
            Ok(functions) => unsafe { Text::at((functions.temz_status_text)(*self)) }.fmt(f),
            Err(_) => fmt::Debug::fmt(self, f),
        }
    }
}
