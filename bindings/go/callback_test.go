//go:build windows && amd64

package temz

import (
	"context"
	"errors"
	"os"
	"runtime"
	"strings"
	"testing"
)

func TestCallbacksMayAskAndSetButNotChange(t *testing.T) {
	h := newHost(t)
	insideCall := 0
	h.inUpdate = func(*Outcome) { h.callEverything() }
	h.inAsk = func(*Outcome) { h.callEverything() }
	h.inCall = func(*Call) {
		if insideCall++; insideCall == 1 {
			h.callEverything()
		}
	}
	h.action.result = 5
	h.answers = []Answer{Ignore}
	h.trace()
	h.expect(nil, h.load(oneAction))

	h.expect(nil, h.run(Install))

	equal(h, 1, h.updates)
	equal(h, 1, h.asks)
	h.check(insideCall > 0, "nothing is traced")
}

func TestCallbacksMayNotChangeAnotherContext(t *testing.T) {
	h := newHost(t)
	another, err := New()
	h.expect(nil, err)
	h.inUpdate = func(*Outcome) {
		onThread(func() {
			_, err := another.Run(context.Background(), Install)
			equal(h, error(&Error{Call: "run", Status: Busy}), err)
		})
		h.expect(InCallback, another.Load("install.xml"))
		h.expect(InCallback, another.Unload())
		_, err := another.Run(context.Background(), Install)
		h.expect(InCallback, err)
		h.expect(InCallback, another.Close())
		_, err = another.LastFailure()
		h.expect(nil, err)
	}
	h.expect(nil, h.load(oneCaution))
	h.expect(nil, h.run(Install))
	equal(h, 1, h.updates)
	h.expect(nil, another.Close())
}

func TestCallbacksSeeTheRunGoOn(t *testing.T) {
	h := newHost(t)
	askForTheOutcome := func(now *Outcome) {
		outcome, err := h.engine.Outcome()
		h.expect(nil, err)
		equal(h, *now, outcome)
	}
	h.inUpdate = askForTheOutcome
	h.inAsk = askForTheOutcome
	h.action.result = 5
	h.expect(nil, h.load(oneAction))
	h.expect(RunFailed, h.run(Install))
	equal(h, 1, h.updates)
	equal(h, 1, h.asks)
	h.expect(RunFailed, h.run(Install))
}

func TestRunGoesOnWithTheObserverItBeganWith(t *testing.T) {
	h := newHost(t)
	byAnother := 0
	h.inUpdate = func(*Outcome) {
		h.expect(nil, h.engine.SetObserver(&Observer{Update: func(*Outcome) Order {
			byAnother++
			return Continue
		}}))
		runtime.GC()
	}
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	equal(h, 3, h.updates)
	equal(h, 0, byAnother)
	h.expect(nil, h.run(Uninstall))
	equal(h, 3, h.updates)
	equal(h, 3, byAnother)
}

func TestRunGoesOnWithTheTracerItBeganWith(t *testing.T) {
	h := newHost(t)
	byAnother := 0
	h.inCall = func(*Call) {
		h.expect(nil, h.engine.SetTracer(&Tracer{Call: func(*Call) { byAnother++ }}))
	}
	h.trace()
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.run(Install))
	heard := len(h.calls)
	h.check(heard >= 3, "%d calls", heard)
	equal(h, 0, byAnother)
	h.expect(nil, h.run(Uninstall))
	equal(h, heard, len(h.calls))
	h.check(byAnother >= 3, "%d calls", byAnother)
}

func (h *host) expectBusy() {
	h.Helper()
	h.expectOfAll(Busy, h.engine)
	h.expect(Busy, h.engine.Close())
	_, err := New()
	h.expect(Busy, err)
	_, err = Schema()
	h.expect(Busy, err)
	h.expect(nil, CheckVersion(HeaderVersion))
	equal(h, "Done.", OK.Error())
}

func TestOtherThreadIsTurnedAway(t *testing.T) {
	h := newHost(t)
	h.inUpdate = func(*Outcome) { onThread(h.expectBusy) }
	h.expect(nil, h.load(oneCaution))
	h.expect(nil, h.run(Install))
	equal(h, 1, h.updates)
}

func TestOtherThreadComesAfterwards(t *testing.T) {
	h := newHost(t)
	onThread(func() {
		h.expect(nil, h.load(threeFiles))
		h.expect(nil, h.run(Install))
	})
	h.expectFiles(true, true, true)
	h.expect(nil, h.run(Uninstall))
	h.expectFiles(false, false, false)
}

func TestRefusedRunLeavesTheOneThatGoesOnAlone(t *testing.T) {
	h := newHost(t)
	ctx, cancel := context.WithCancel(context.Background())
	over, end := context.WithCancel(context.Background())
	end()
	h.inUpdate = func(*Outcome) {
		_, err := h.engine.Run(over, Install)
		h.expect(InCallback, err)
		onThread(func() {
			_, err := h.engine.Run(over, Install)
			h.expect(Busy, err)
		})
		if h.updates == 2 {
			cancel()
		}
	}
	h.expect(nil, h.load(threeFiles))
	_, err := h.engine.Run(ctx, Install)
	h.expect(context.Canceled, err)
	equal(h, 2, h.updates)
}

func TestClosedEngineKeepsNothing(t *testing.T) {
	h := newHost(t)
	before := len(handles.values)
	engine, err := New()
	h.expect(nil, err)
	h.expect(nil, engine.SetObserver(h.observer()))
	h.expect(nil, engine.SetTracer(&Tracer{Call: func(*Call) {}}))
	equal(h, before+2, len(handles.values))
	h.expect(nil, engine.Close())
	equal(h, before, len(handles.values))
}

// expectPanic expects a run to panic with a value of a callback's.
func (h *host) expectPanic(expected any, run func(Mode) error) {
	h.Helper()
	defer func() {
		h.Helper()
		h.check(recover() == expected, "no panic of the callback's comes out")
	}()
	err := run(Install)
	h.Errorf("The run has ended: %v", err)
}

func TestPanicOfACallbackEndsTheRunAndComesOut(t *testing.T) {
	h := newHost(t)
	cause := errors.New("a cause")
	h.trace()
	h.inUpdate = func(*Outcome) {
		if h.updates == 2 {
			panic(cause)
		}
	}
	h.expect(nil, h.load(threeFiles))
	h.expectPanic(cause, h.run)
	equal(h, 2, h.updates)
	h.expectFiles(true, false, false)
	h.inUpdate = nil

	h.inCall = func(call *Call) {
		if call.Name == "CopyFileW" {
			panic(cause)
		}
	}
	h.expectPanic(cause, h.run)
	equal(h, "CopyFileW", h.calls[len(h.calls)-1].Name)
	h.expectFiles(true, false, false)

	h.guard()
	h.inPermit = func(*Call) { panic(cause) }
	h.expectPanic(cause, h.run)
	equal(h, 1, len(h.permissions))
	h.inPermit = nil

	h.inStep = func(*Step) { panic(cause) }
	h.expectPanic(cause, func(mode Mode) error { return h.plan(mode) })
	equal(h, 1, len(h.steps))

	h.expect(nil, h.run(Install))
	h.expectFiles(true, true, true)
}

func TestPanicOfAQuestionAbortsTheRun(t *testing.T) {
	h := newHost(t)
	h.inAsk = func(now *Outcome) {
		var none *Outcome
		now.Progress = none.Progress
	}
	h.letActionFail()
	defer func() {
		_, isRuntimeError := recover().(runtime.Error)
		h.check(isRuntimeError, "no panic of the callback's comes out")
		equal(h, 1, h.action.calls)
		h.inAsk = nil
		h.expect(RunFailed, h.run(Install))
	}()
	h.run(Install)
}

// A callback that ends its goroutine would leave the library's frames behind: the process ends.
func TestGoexitInACallbackEndsTheProcess(t *testing.T) {
	const inside = "TEMZ_TEST_GOEXIT"
	h := newHost(t)
	h.expect(nil, h.load(oneCaution))
	if os.Getenv(inside) != "" {
		h.inUpdate = func(*Outcome) { runtime.Goexit() }
		h.run(Install)
		return
	}
	output, err := runAgain(t, program, inside+"=1")
	h.check(err != nil, "The process has ended well.")
	h.check(strings.Contains(output, "a callback has called runtime.Goexit"), "%s", output)
}

func TestCallbackMayLetTheStackMove(t *testing.T) {
	h := newHost(t)
	var grow func(depth int) int
	grow = func(depth int) int {
		var frame [1024]byte
		if depth == 0 {
			return int(frame[0])
		}
		return grow(depth-1) + int(frame[depth])
	}
	h.inUpdate = func(*Outcome) { grow(1000) }
	h.expect(nil, h.load(threeFiles))
	for i := 0; i < 10; i++ {
		onThread(func() { h.expect(nil, h.run(Install)) })
		equal(h, "3.txt", h.outcome.Action.Text1)
	}
}
