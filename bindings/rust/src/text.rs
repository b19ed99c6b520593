//! Texts in UTF-16, as they go to the library and come from it.

use crate::sys::{self, temz_char, Status};
use crate::{Error, Result};
use std::char::{decode_utf16, REPLACEMENT_CHARACTER};
use std::ffi::{OsStr, OsString};
use std::fmt::{self, Write};
use std::os::windows::ffi::{OsStrExt, OsStringExt};
use std::slice;

/// A text that belongs to the library. `to_string` makes one of your own; what isn't Unicode in it
/// becomes a replacement character, but not in [`Text::to_os_string`].
#[derive(Clone, Copy, PartialEq, Eq)]
pub struct Text<'a>(&'a [temz_char]);

impl<'a> Text<'a> {
    /// The text up to the first zero, or all of it.
    pub(crate) fn until_zero(units: &'a [temz_char]) -> Self {
        Text(units.split(|&unit| unit == 0).next().unwrap_or(units))
    }

    /// # Safety
    /// `first` begins a text that ends in a zero and lives for `'a`.
    pub(crate) unsafe fn at(first: *const temz_char) -> Self {
        let mut length = 0;
        // Safe: up to the zero all is within the text.
        unsafe {
            while *first.add(length) != 0 {
                length += 1;
            }
            Text(slice::from_raw_parts(first, length))
        }
    }

    /// Whether there is nothing in it.
    pub fn is_empty(self) -> bool {
        self.0.is_empty()
    }

    /// The text as it is, such as for a path.
    pub fn to_os_string(self) -> OsString {
        OsString::from_wide(self.0)
    }
}

impl fmt::Display for Text<'_> {
    fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
        decode_utf16(self.0.iter().copied())
            .try_for_each(|unit| f.write_char(unit.unwrap_or(REPLACEMENT_CHARACTER)))
    }
}

impl fmt::Debug for Text<'_> {
    fn fmt(&self, f: &mut fmt::Formatter) -> fmt::Result {
        write!(f, "{:?}", self.to_string())
    }
}

impl PartialEq<str> for Text<'_> {
    fn eq(&self, other: &str) -> bool {
        self.0.iter().copied().eq(other.encode_utf16())
    }
}

impl PartialEq<&str> for Text<'_> {
    fn eq(&self, other: &&str) -> bool {
        self == *other
    }
}

/// A text for the library, with its terminator.
pub(crate) fn terminated(text: impl AsRef<OsStr>) -> Result<Vec<temz_char>> {
    let mut units: Vec<_> = text.as_ref().encode_wide().collect();
    if units.contains(&0) {
        return Err(Error::ZeroInText);
    }
    units.push(0);
    Ok(units)
}

/// What a function answers that fills a buffer with a text, and the text.
pub(crate) fn given(
    give: impl Fn(*mut temz_char, usize, *mut usize) -> Status,
) -> (Status, OsString) {
    let mut buffer = vec![0; sys::TEXT_LENGTH];
    loop {
        let mut length = 0;
        match give(buffer.as_mut_ptr(), buffer.len(), &mut length) {
            Status::BUFFER_TOO_SMALL => buffer.resize(length, 0),
            status => return (status, Text::until_zero(&buffer).to_os_string()),
        }
    }
}

/// The same as a text for people.
pub(crate) fn readable(text: OsString) -> String {
    text.to_string_lossy().into_owned()
}
