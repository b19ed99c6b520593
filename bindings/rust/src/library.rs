//! `TEMZC.dll` itself.

use crate::error::succeeded;
use crate::sys::{self, Functions};
use crate::text::terminated;
use crate::{Error, Result};
use std::ffi::{c_void, CStr};
use std::os::raw::c_char;
use std::path::Path;
use std::sync::{Mutex, PoisonError};
use std::{env, fmt, io};

/// A version of the library.
#[derive(Clone, Copy, Debug, PartialEq, Eq, PartialOrd, Ord, Hash)]
pub struct Version {
    /// Another one is another interface.
    pub major: u32,
    /// A higher one can do more.
    pub minor: u32,
    /// A higher one does the same better.
    pub patch: u32,
}

impl fmt::Display for Version {
    fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
        write!(f, "{}.{}.{}", self.major, self.minor, self.patch)
    }
}

/// The version of the library.
pub fn version() -> Result<Version> {
    // Safe: it can be called at any time.
    let version = unsafe { (library()?.temz_version)() };
    Ok(Version { major: version >> 24, minor: version >> 12 & 0xFFF, patch: version & 0xFFF })
}

/// The functions of the library, for the calls that the crate doesn't make. It is loaded when they
/// are asked for the first time, and stays.
pub fn library() -> Result<&'static Functions> {
    static LOADED: Mutex<Option<&Functions>> = Mutex::new(None);
    let mut loaded = LOADED.lock().unwrap_or_else(PoisonError::into_inner);
    match *loaded {
        Some(functions) => Ok(functions),
        None => Ok(loaded.insert(Box::leak(Box::new(load()?)))),
    }
}

/// By its whole path, so that no other library of this name can take its place.
fn load() -> Result<Functions> {
    let path = env::current_exe().unwrap_or_default().with_file_name("TEMZC.dll");
    let functions = bind(&path).map_err(|cause| Error::Library { path, cause })?;
    // Safe: it can be called at any time.
    succeeded(unsafe { (functions.temz_check_version)(sys::VERSION) })?;
    Ok(functions)
}

fn bind(path: &Path) -> io::Result<Functions> {
    let path = terminated(path).map_err(|_| io::ErrorKind::InvalidInput)?;
    // Safe: the path is terminated.
    let library = unsafe { LoadLibraryW(path.as_ptr()) };
    if library.is_null() {
        return Err(io::Error::last_os_error());
    }
    // Safe: the library is never released, and its functions are as they are declared.
    unsafe { Functions::bind(|name: &CStr| GetProcAddress(library, name.as_ptr())) }
        .map_err(|name| io::Error::new(io::ErrorKind::NotFound, format!("It has no {}.", name)))
}

#[link(name = "kernel32")]
extern "system" {
    fn LoadLibraryW(path: *const u16) -> *mut c_void;
    fn GetProcAddress(library: *mut c_void, name: *const c_char) -> Option<unsafe extern "C" fn()>;
}
