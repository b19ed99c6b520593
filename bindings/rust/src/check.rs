//! What serves those who write scripts, and needs no context.

use crate::error::succeeded;
use crate::library::library;
use crate::panics::Panics;
use crate::records::{Finding, FindingKind};
use crate::sys::{self, Severity, Status};
use crate::text::{given, readable, terminated, Text};
use crate::Result;
use std::cell::RefCell;
use std::ffi::c_void;
use std::path::{Path, PathBuf};
use std::ptr;

/// A script that is to be checked as the engine would read it. Nothing is run.
#[must_use = "nothing is read before `run`"]
pub struct Check {
    script: PathBuf,
    payload: Option<PathBuf>,
    previous: Option<PathBuf>,
}

impl Check {
    /// A check of the script at this path.
    pub fn new(script: impl AsRef<Path>) -> Self {
        Check { script: script.as_ref().into(), payload: None, previous: None }
    }

    /// The folder in which the sources of files stand, to see what is missing there or left over.
    pub fn payload(mut self, folder: impl AsRef<Path>) -> Self {
        self.payload = Some(folder.as_ref().into());
        self
    }

    /// The script of the version before, to see what an upgrade leaves of it.
    pub fn previous(mut self, script: impl AsRef<Path>) -> Self {
        self.previous = Some(script.as_ref().into());
        self
    }

    /// Tells all that is wrong, in the order of the places.
    pub fn run(&self, mut finding: impl FnMut(&Finding)) -> Result<()> {
        let functions = library()?;
        let script = terminated(&self.script)?;
        let payload = self.payload.as_ref().map(terminated).transpose()?;
        let previous = self.previous.as_ref().map(terminated).transpose()?;
        let first = |text: &Option<Vec<_>>| text.as_ref().map_or(ptr::null(), |text| text.as_ptr());
        let told = Told { finding: RefCell::new(&mut finding), panics: Panics::default() };
        let request = sys::temz_check_request {
            size: sys::size_of::<sys::temz_check_request>(),
            script: script.as_ptr(),
            payload: first(&payload),
            previous: first(&previous),
            user: &told as *const Told as *mut c_void,
            finding: Some(found),
        };
        // Safe: the texts are terminated, and the record is as large as it says.
        let status = unsafe { (functions.temz_check)(&request) };
        told.panics.resume();
        succeeded(status)
    }
}

/// What the callback of one check needs.
struct Told<'a> {
    finding: RefCell<&'a mut dyn FnMut(&Finding)>,
    panics: Panics,
}

unsafe extern "C" fn found(user: *mut c_void, finding: *const sys::temz_finding) {
    // Safe: this is the request's own, and the host's record is nothing but the library's.
    let (told, finding) = unsafe { (&*(user as *const Told), &*finding.cast()) };
    told.panics.catch((), || told.finding.borrow_mut()(finding))
}

/// All that a check can find, in the order of the codes.
pub fn finding_kinds() -> Result<Vec<FindingKind>> {
    let functions = library()?;
    let mut kinds = Vec::new();
    loop {
        let mut kind = sys::temz_finding_kind {
            size: sys::size_of::<sys::temz_finding_kind>(),
            severity: Severity::NOTE,
            code: ptr::null(),
            meaning: ptr::null(),
            remedy: ptr::null(),
        };
        // Safe: the record is as large as it says.
        match unsafe { (functions.temz_get_finding_kind)(kinds.len() as u32, &mut kind) } {
            Status::NOT_FOUND => return Ok(kinds),
            status => succeeded(status)?,
        }
        // Safe: the texts are the library's, which is never unloaded.
        let text = |first| unsafe { Text::at(first) };
        kinds.push(FindingKind {
            severity: kind.severity,
            code: text(kind.code),
            meaning: text(kind.meaning),
            remedy: text(kind.remedy),
        });
    }
}

/// The XML Schema (1.0) of install scripts, to be saved as UTF-8.
pub fn schema() -> Result<String> {
    let functions = library()?;
    // Safe: the buffer has this capacity.
    let (status, text) = given(|buffer, capacity, length| unsafe {
        (functions.temz_schema)(buffer, capacity, length)
    });
    succeeded(status)?;
    Ok(readable(text))
}
