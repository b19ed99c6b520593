//go:build windows && amd64

package temz

import (
	"testing"
)

func (h *host) expectCopy(index int, source, target string) {
	h.Helper()
	copied := h.heard("CopyFileW", index)
	equal(h, "file", copied.Group)
	equal(h, 3, len(copied.Arguments))
	if len(copied.Arguments) != 3 {
		return
	}
	endsIn(h, copied.Arguments[0], source)
	equal(h, target, copied.Arguments[1])
	equal(h, "0", copied.Arguments[2])
	equal(h, "1", copied.Result)
	equal(h, false, copied.Failed)
	equal(h, 0, copied.SystemError)
}

func TestTraceShowsCallsInOrder(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(threeFiles))
	equal(h, 0, len(h.calls))

	h.expect(nil, h.run(Install))

	h.expectCopy(0, `payload\greeter.txt`, app+`\1.txt`)
	h.expectCopy(1, `payload\manual.txt`, app+`\2.txt`)
	h.expectCopy(2, `payload\changes.txt`, app+`\3.txt`)
	equal(h, "", h.heard("CopyFileW", 3).Name)
	h.check(h.heard("CopyFileW", 0).Duration > 0, "a copy takes no time")
}

func TestTraceShowsLinesOfTheLog(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(oneAction))

	h.expect(nil, h.run(Install))

	line := h.heard("INFO", 0)
	equal(h, "log", line.Group)
	equal(h, 1, len(line.Arguments))
	endsIn(h, line.Arguments[0], "callDllEntry:temz_test_actions.dll;answer")
	equal(h, false, line.Failed)
	equal(h, "INFO", h.heard("INFO", 1).Name)
	for _, call := range h.calls {
		if call.Name == "INFO" {
			return
		}
		h.check(call.Name != "CallEntry", "The line comes behind the call.")
	}
}

func TestTraceShowsTheRegistryByNames(t *testing.T) {
	const key = `Software\temz-go`
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(script(`<Feature><Component On='install'><RegistryKey Action='create'
		Root='HKEY_CURRENT_USER' Key='`+key+`'><RegistryValue Name='Number' Type='REG_DWORD'
		Value='42'/></RegistryKey></Component><Component On='uninstall'><RegistryKey
		Action='remove' Root='HKEY_CURRENT_USER' Key='`+key+`'/></Component></Feature>`)))

	h.expect(nil, h.run(Install))

	value := h.heard("RegSetValueExW", 0)
	equal(h, "registry", value.Group)
	equal(h, 6, len(value.Arguments))
	if len(value.Arguments) == 6 {
		equal(h, `HKEY_CURRENT_USER\`+key, value.Arguments[0])
		equal(h, "Number", value.Arguments[1])
		equal(h, "42", value.Arguments[4])
	}
	equal(h, "0", value.Result)
	equal(h, false, value.Failed)
	h.expect(nil, h.run(Uninstall))
	equal(h, "RegDeleteKeyW", h.heard("RegDeleteKeyW", 0).Name)
}

func TestTraceShowsFailures(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(script(`<Feature><ComponentRef Id='Missing'/></Feature>`)))

	h.expect(RunFailed, h.run(Install))

	copied := h.heard("CopyFileW", 0)
	equal(h, true, copied.Failed)
	equal(h, 2, copied.SystemError)
	equal(h, "0", copied.Result)
}

func TestTracedRunEqualsAnUntracedOne(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	untraced := h.outcome
	h.expect(nil, h.run(Uninstall))
	equal(h, 0, len(h.calls))

	h.trace()
	h.expect(nil, h.run(Install))

	h.check(len(h.calls) > 0, "nothing is traced")
	equal(h, untraced, h.outcome)
	equal(h, 9, h.updates)
	h.expectFiles(true, true, true)
}

func TestTracerMayAskForTheOutcome(t *testing.T) {
	h := newHost(t)
	h.inCall = func(call *Call) {
		outcome, err := h.engine.Outcome()
		h.expect(nil, err)
		h.check(outcome.Progress <= 100, "%d %%", outcome.Progress)
		if call.Name == "CopyFileW" {
			endsIn(h, call.Arguments[1], outcome.Action.Text1)
		}
	}
	h.trace()
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	h.check(len(h.calls) >= 3, "%d calls", len(h.calls))
}

func TestWhatATracerAsksIsNotTraced(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	calls := len(h.calls)
	h.expect(nil, h.run(Uninstall))

	h.calls = nil
	h.inCall = func(*Call) {
		_, err := h.engine.Directory("System32Folder")
		h.expect(nil, err)
	}
	h.expect(nil, h.run(Install))
	equal(h, calls, len(h.calls))
}

func TestTraceEndsWithItsTracer(t *testing.T) {
	h := newHost(t)
	h.stopAt = 2
	h.trace()
	h.expect(nil, h.load(threeFiles))
	h.expect(Stopped, h.run(Install))
	calls := len(h.calls)
	h.check(calls > 0, "nothing is traced")

	h.expect(nil, h.engine.SetTracer(nil))
	h.expect(nil, h.run(Install))
	equal(h, calls, len(h.calls))
}

func TestTraceMarksWhatChangesSomething(t *testing.T) {
	h := newHost(t)
	h.trace()
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	h.expect(nil, h.run(Uninstall))

	for _, changing := range []string{"CreateDirectoryW", "CopyFileW", "DeleteFileW"} {
		h.check(h.heard(changing, 0).Changes, "%s changes nothing", changing)
	}
	question := h.heard("FindFirstFileW", 0)
	equal(h, "FindFirstFileW", question.Name)
	equal(h, false, question.Changes)
}

func TestPermitIsAskedBeforeEachChange(t *testing.T) {
	h := newHost(t)
	h.inPermit = func(call *Call) {
		equal(h, true, call.Changes)
		equal(h, false, call.Failed)
		equal(h, 0, call.Duration)
		equal(h, "", call.Result)
		if call.Name == "CopyFileW" {
			h.check(!isThere(call.Arguments[1]), "%s is there", call.Arguments[1])
		}
	}
	h.guard()
	h.expect(nil, h.load(threeFiles))
	equal(h, 0, len(h.permissions))

	h.expect(nil, h.run(Install))

	equal(h, 6, len(h.permissions)) // the directory and the copy of each file
	equal(h, 0, len(h.calls))
	last := h.permissions[5]
	equal(h, "file", last.Group)
	equal(h, "CopyFileW", last.Name)
	equal(h, 3, len(last.Arguments))
	equal(h, app+`\3.txt`, last.Arguments[1])
	h.expectFiles(true, true, true)
}

func TestRefusedChangeEndsTheRun(t *testing.T) {
	h := newHost(t)
	h.refuseAt = 4
	h.guard()
	h.expect(nil, h.load(threeFiles))

	h.expect(Stopped, h.run(Install))

	equal(h, 4, len(h.permissions))
	equal(h, 0, h.asks)
	equal(h, 0, h.outcome.Result)
	equal(h, ActionCopyFile, h.outcome.Action.Code)
	equal(h, "2.txt", h.outcome.Action.Text1)
	h.expectFiles(true, false, false)
	h.expect(nil, h.run(Install))
	h.expectFiles(true, true, true)
}

func TestAnyOtherPermitIsARefusal(t *testing.T) {
	h := newHost(t)
	h.refuseAt = 1
	h.refusal = 7
	h.guard()
	h.expect(nil, h.load(threeFiles))
	h.expect(Stopped, h.run(Install))
	h.check(!isThere(app), "something was done")
}

func TestPermitMayAsk(t *testing.T) {
	h := newHost(t)
	h.inPermit = func(*Call) {
		permits := len(h.permissions)
		_, err := h.engine.Outcome()
		h.expect(nil, err)
		_, err = h.engine.Directory("System32Folder")
		h.expect(nil, err)
		h.expect(InCallback, h.engine.Unload())
		equal(h, permits, len(h.permissions))
	}
	h.guard()
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	equal(h, 6, len(h.permissions))
	h.expectFiles(true, true, true)
}

func TestTracerWithNeitherFunctionIsRefused(t *testing.T) {
	h := newHost(t)
	h.guard()
	h.expect(NullArgument, h.engine.SetTracer(&Tracer{}))
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	equal(h, 6, len(h.permissions)) // by the tracer that was set before
}
