use crate::host::{script, Host, Watcher};
use std::{fs, path::Path};
use temz::Mode;

const PRODUCT: &str = r"C:\Program Files\Example Works\Greeter";

fn run_product(host: &mut Host, mode: Mode) {
    let mut furthest = 0;
    let mut watcher = Watcher {
        in_update: Some(Box::new(|_, now| {
            assert!((furthest..=100).contains(&now.progress()));
            assert_ne!(now.action().code().0, 0);
            furthest = now.progress();
        })),
        ..Watcher::default()
    };
    let outcome = host.watched(mode, &mut watcher).unwrap();
    assert_eq!(outcome.result(), 0);
    assert!(watcher.updates.len() > 10);
}

/// What the product consists of, besides what is its user's: its files, what its service and its
/// custom action write, and its shortcut.
fn expect_product(there: bool) {
    for file in [
        "greeter.txt",
        "greeter-service.exe",
        "tools.txt",
        "welcome.txt",
        r"cache\greeting.txt",
        r"doc\manual.txt",
        r"C:\ProgramData\Microsoft\Windows\Start Menu\Programs\Example Works\Greeter.lnk",
    ] {
        assert_eq!(Path::new(PRODUCT).join(file).exists(), there, "{}", file);
    }
    assert!(Path::new(PRODUCT).join(r"doc\notes.txt").exists());
}

#[test]
fn product_is_installed_upgraded_and_removed() {
    let mut host = Host::new();
    host.context.load("install.xml").unwrap();
    assert_eq!(host.context.variable("PRODUCT").unwrap(), "Greeter");
    let directory = host.context.directory("APPLICATIONROOTDIRECTORY").unwrap();
    assert_eq!(directory.to_str().unwrap(), format!(r"{}\", PRODUCT));

    run_product(&mut host, Mode::Install);
    expect_product(true);
    fs::remove_file(Path::new(PRODUCT).join("greeter.txt")).unwrap();
    run_product(&mut host, Mode::Upgrade);
    expect_product(true);
    run_product(&mut host, Mode::Uninstall);
    expect_product(false);

    host.context.unload().unwrap();
    host.load(&script(
        r"<Feature><Component><RemoveDirectory Path='C:\Program Files\Example Works'/>
        <RegistryKey Action='remove' Root='HKEY_LOCAL_MACHINE' Key='Software\Example Works'/>
        </Component></Feature>",
    ))
    .unwrap();
    host.run(Mode::Install).unwrap();
    assert!(!Path::new(PRODUCT).exists());
}
