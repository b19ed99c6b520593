// The smallest host that tells its user what happens: runs install.xml in the mode install.

#include <temz/IterfaceContext.h>
#include <temz/IterfaceObserver.h>
#include <temz/IterfaceProduct.h>

#include <cstdio>

#include "SafeStart.h"

namespace {

class Observer final : public IterfaceObserver {
    void update(IterfaceProduct* product) override {
        const ActionInfo& action = product->actionInfo;
        std::printf("%3u%% %ls %ls\n", static_cast<unsigned>(product->progress), action.text1,
                    action.text2);
    }

    ObserverAnswer askOnError(ErrorInfo* error) override {
        std::printf("Action %u failed (%u). %ls %ls\n", static_cast<unsigned>(error->code),
                    static_cast<unsigned>(error->systemError), error->text1, error->message);
        return ANSWER_ABORT;
    }
};

int32_t install(IterfaceContext& context) {
    context.runMode = RUNMODE_INSTALL;
    if (!context.load(L"install.xml")) {
        std::printf("install.xml can't be loaded. %ls\n", context.getLastError().c_str());
        return -1;
    }
    IterfaceProduct* product = context.getProduct();
    Observer observer;
    product->observer = &observer;
    const int32_t result = product->run(&context);
    if (result != 0)
        std::printf("The installation failed. %ls\n", product->errorInfo.message);
    else if (product->rebootRequired)
        std::printf("Restart the machine to complete the installation.\n");
    context.unload();
    return result;
}

}  // namespace

int main() {
    const SafeStart safeStart;
    IterfaceContext* context = CreateContextObject();
    if (context == nullptr)
        return 1;
    const int32_t result = install(*context);
    FreeContextObject(context);
    return result == 0 ? 0 : 1;
}
