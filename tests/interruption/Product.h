#pragma once

#include <memory>
#include <optional>
#include <string>

#include "interruption/MachineState.h"
#include "support/LockedFile.h"
#include "support/PayloadFolder.h"
#include "support/Sleeper.h"
#include "support/TestFolder.h"
#include "support/TestKey.h"
#include "support/TestService.h"

/// A stage in the life of a product: what is done to it, by which version of its script.
enum class Stage { install, upgrade, uninstall };

/// A product of some hundreds of actions, of all kinds that change the machine, and the machine
/// around it: files that another program holds, a program of its own that runs, a service, and what
/// its user has written into its directory.
class Product {
public:
    /// Makes the machine as it is before the first stage.
    void beginLife();

    /// What the user and other programs do before a stage.
    void prepare(Stage next);

    /// Waits until the service, which no end of a host program ends, isn't on its way any more.
    bool settle() const { return service->waitUntilSettled(); }

    /// Other programs let go of the product's files and its own ends, as when the machine is
    /// switched off.
    void letGo();

    /// The script and the mode, as arguments for the host program.
    std::wstring argumentsFor(Stage stage) const;

    MachineState state() const;

    /// Something in the directory into which it is installed.
    std::wstring app(const std::wstring& name) const { return folder.path(L"app\\" + name); }

private:
    /// A `File` with its source for a version of the product.
    std::string file(const std::wstring& name, const std::string& version,
                     const std::string& content, const std::string& attributes = {}) const;
    std::string files(const std::string& version) const;
    std::string filesInUse(const std::string& version) const;
    std::string shortcuts(const std::string& version) const;
    std::string keys(const std::string& version) const;
    std::string serviceAction(const std::string& action) const;
    std::string installedLast() const;
    std::string script(const std::string& version) const;

    const TestFolder folder;
    const TestFolder scripts;
    const PayloadFolder payload;
    const TestKey key;
    Stage stage = Stage::install;
    std::unique_ptr<TestService> service;
    std::optional<LockedFile> inUse;
    std::optional<Sleeper> running;
};
