use crate::host::status;
use temz::{sys, Status};

fn packed(version: [u32; 3]) -> u32 {
    version[0] << 24 | version[1] << 12 | version[2]
}

fn answer_to(header: u32) -> Status {
    // Safe: it can be called at any time.
    unsafe { (temz::library().unwrap().temz_check_version)(header) }
}

#[test]
fn versions_of_header_and_library_agree() {
    let version = temz::version().unwrap();
    assert_eq!(packed([version.major, version.minor, version.patch]), sys::VERSION);
    assert_eq!(version.to_string(), env!("CARGO_PKG_VERSION"));
    assert_eq!(answer_to(sys::VERSION), Status::OK);
}

#[test]
fn older_headers_of_the_major_version_are_served() {
    assert_eq!(answer_to(packed([temz::version().unwrap().major, 0, 0])), Status::OK);
}

#[test]
fn other_major_and_newer_versions_are_refused() {
    let version = temz::version().unwrap();
    for refused in [
        packed([version.major + 1, 0, 0]),
        packed([version.major.wrapping_sub(1) & 0xFF, version.minor, version.patch]),
        packed([version.major, version.minor + 1, 0]),
        packed([version.major, version.minor, version.patch + 1]),
        u32::MAX,
    ] {
        assert_eq!(answer_to(refused), Status::VERSION_MISMATCH);
    }
}

#[test]
fn each_status_has_its_text() {
    let texts: Vec<_> = crate::contract::status_texts();
    assert_eq!(texts.len(), Status::ALL.len());
    for (name, text) in texts {
        let (_, known) = Status::ALL.iter().find(|(known, _)| *known == name).unwrap();
        assert_eq!(known.to_string(), text);
    }
}

#[test]
fn unknown_status_has_a_text_too() {
    for number in [-1, 1000, i32::MAX, i32::MIN] {
        assert_eq!(Status(number).to_string(), "Unknown status.");
    }
    assert_eq!(format!("{:?}", Status(1000)), "Status(1000)");
    assert_eq!(status::<()>(Err(Status::BUSY.into())), Status::BUSY);
}
