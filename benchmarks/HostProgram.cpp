// The least that a host does: it makes a context and frees it. Between the two it installs by the
// script that it is given, if any.

#include <temz/IterfaceContext.h>
#include <temz/IterfaceObserver.h>
#include <temz/IterfaceProduct.h>

namespace {

class SilentObserver final : public IterfaceObserver {
    void update(IterfaceProduct*) override {}
    ObserverAnswer askOnError(ErrorInfo*) override { return ANSWER_ABORT; }
};

bool install(IterfaceContext& context, const wchar_t* script) {
    if (!context.load(script))
        return false;
    SilentObserver observer;
    context.getProduct()->observer = &observer;
    context.runMode = RUNMODE_INSTALL;
    const bool done = context.getProduct()->run(&context) == 0;
    return context.unload() && done;
}

}  // namespace

int wmain(int argc, wchar_t** argv) {
    IterfaceContext* context = CreateContextObject();
    if (context == nullptr)
        return 1;
    const bool done = argc < 2 || install(*context, argv[1]);
    FreeContextObject(context);
    return done ? 0 : 1;
}
