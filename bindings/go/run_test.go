//go:build windows && amd64

package temz

import (
	"context"
	"errors"
	"os"
	"syscall"
	"testing"
	"unsafe"
)

func TestRunTellsEachActionBeforeItIsDone(t *testing.T) {
	h := newHost(t)
	h.inUpdate = func(now *Outcome) {
		if h.updates == 2 {
			equal(h, Outcome{
				Progress: 33,
				Action:   Action{ActionCopyFile, "2.txt", ""},
				Failure:  Failure{Code: ErrorMessage},
			}, *now)
			h.expectFiles(true, false, false)
		}
	}
	h.expect(nil, h.load(threeFiles))

	h.expect(nil, h.run(Install))

	equal(h, 3, h.updates)
	equal(h, 0, h.asks)
	equal(h, 0, h.outcome.Result)
	equal(h, false, h.outcome.Restart)
	equal(h, 66, h.outcome.Progress)
	equal(h, "3.txt", h.outcome.Action.Text1)
	h.expectFiles(true, true, true)

	h.expect(nil, h.run(Uninstall))
	equal(h, ActionDeleteFile, h.outcome.Action.Code)
	h.expectFiles(false, false, false)
}

func TestRunWithoutObserverIsDoneUnseen(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))
	h.expect(nil, h.engine.SetObserver(nil))
	h.expect(nil, h.run(Install))
	equal(h, 0, h.updates)
	h.expectFiles(true, true, true)
}

func TestObserverMayLackItsFunctions(t *testing.T) {
	h := newHost(t)
	h.action.result = 5
	h.expect(nil, h.load(oneAction))

	h.expect(nil, h.engine.SetObserver(&Observer{Update: h.observer().Update}))
	h.expect(RunFailed, h.run(Install))
	equal(h, 1, h.updates)
	equal(h, 0, h.asks)

	h.expect(nil, h.engine.SetObserver(&Observer{Ask: h.observer().Ask}))
	h.expect(RunFailed, h.run(Install))
	equal(h, 1, h.updates)
	equal(h, 1, h.asks)
}

func TestFailureIsAskedAndAborted(t *testing.T) {
	h := newHost(t)
	h.letActionFail()

	err := h.run(Install)

	h.expect(RunFailed, err)
	equal(h, 1, h.asks)
	equal(h, 0, h.asked.Result)
	equal(h, Action{ActionCustomAction, "answer", "A title"}, h.asked.Action)
	h.expectFailureOfAction(h.asked.Failure)
	equal(h, 1234, h.outcome.Result)
	h.expectFailureOfAction(h.outcome.Failure)

	var failed *RunError
	h.check(errors.As(err, &failed), "%T", err)
	equal(h, RunError{RunFailed, h.outcome, nil}, *failed)
	equal(h, "temz: The run has failed; the outcome tells what and why. "+
		"answer: It went wrong. (1234)", err.Error())
}

func TestRetryCarriesTheActionOutOnceMore(t *testing.T) {
	h := newHost(t)
	h.answers = []Answer{Retry}
	h.inAsk = h.letActionSucceed
	h.letActionFail()

	h.expect(nil, h.run(Install))

	equal(h, 2, h.action.calls)
	equal(h, 2, h.updates)
	equal(h, 1, h.asks)
	equal(h, 0, h.outcome.Result)
	equal(h, Failure{Code: ErrorMessage}, h.outcome.Failure)
}

func TestIgnoredFailureIsASuccess(t *testing.T) {
	h := newHost(t)
	h.answers = []Answer{Ignore}
	h.letActionFail()

	h.expect(nil, h.run(Install))

	equal(h, 1, h.action.calls)
	equal(h, 0, h.outcome.Result)
	h.expectFailureOfAction(h.outcome.Failure)
}

func TestAnyOtherAnswerEndsTheRun(t *testing.T) {
	h := newHost(t)
	h.letActionFail()
	h.answers = []Answer{Retry, 3}
	h.expect(RunFailed, h.run(Install))
	equal(h, 2, h.asks)
	h.answers = append(h.answers, -1)
	h.expect(RunFailed, h.run(Install))
	equal(h, 3, h.asks)

	for _, stop := range []Order{2, -1} {
		h.stopAt = h.updates + 1
		h.stop = stop
		h.expect(Stopped, h.run(Install))
	}
}

func TestStopBeforeTheFirstDoesNothing(t *testing.T) {
	h := newHost(t)
	h.stopAt = 1
	h.expect(nil, h.load(threeFiles))

	h.expect(Stopped, h.run(Install))

	equal(h, 1, h.updates)
	h.expectFiles(false, false, false)
}

func TestStopInTheMiddleKeepsWhatWasDone(t *testing.T) {
	h := newHost(t)
	h.stopAt = 2
	h.expect(nil, h.load(threeFiles))

	err := h.run(Install)

	h.expect(Stopped, err)
	equal(h, "temz: The host has stopped the run; what was done before stays.", err.Error())
	equal(h, 2, h.updates)
	equal(h, 0, h.asks)
	equal(h, 0, h.outcome.Result)
	equal(h, 33, h.outcome.Progress)
	equal(h, "2.txt", h.outcome.Action.Text1)
	h.expectFiles(true, false, false)
}

func TestStoppedRunCanBeRepeated(t *testing.T) {
	h := newHost(t)
	h.stopAt = 2
	h.expect(nil, h.load(threeFiles))
	h.expect(Stopped, h.run(Install))
	h.expect(nil, h.run(Install))
	equal(h, 5, h.updates)
	h.expectFiles(true, true, true)
}

// inCodePage gives a text in the active code page, in which the engine reads scripts.
func inCodePage(text string) []byte {
	units := syscall.StringToUTF16(text)
	bytes := make([]byte, 3*len(units))
	size, _, _ := syscall.NewLazyDLL("kernel32.dll").NewProc("WideCharToMultiByte").Call(0, 0,
		uintptr(unsafe.Pointer(&units[0])), uintptr(len(units)-1),
		uintptr(unsafe.Pointer(&bytes[0])), uintptr(len(bytes)), 0, 0)
	return bytes[:size]
}

func TestNamesOutsideAsciiStayWhole(t *testing.T) {
	h := newHost(t)
	path := folder + `\café.xml`
	h.expect(nil, os.WriteFile(path, inCodePage(
		`<Script><Product><Directory Id='Dé' Path='`+app+`\été'><Component Id='C'>
		<File Name='thé.txt' Source='payload\greeter.txt'/></Component></Directory>
		<InstallExecuteSequence><Feature><ComponentRef Id='C'/></Feature></InstallExecuteSequence>
		</Product></Script>`), 0o666))
	h.expect(nil, h.engine.Load(path))
	directory, err := h.engine.Directory("Dé")
	h.expect(nil, err)
	equal(h, app+`\été\`, directory)

	h.expect(nil, h.run(Install))

	equal(h, "thé.txt", h.lastUpdate.Action.Text1)
	h.check(isThere(app+`\été\thé.txt`), "thé.txt isn't there")
}

func TestCustomActionReadsTheActionValue(t *testing.T) {
	h := newHost(t)
	const placeInParameters = 272
	h.expect(nil, h.load(oneAction))
	h.expect(nil, h.run(Install))
	equal(h, 1, h.action.calls)
	equal(h, uintptr(unsafe.Pointer(h.action)),
		*(*uintptr)(unsafe.Pointer(&h.action.params[placeInParameters])))
}

func TestOutcomeIsEmptyBeforeTheFirstRun(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(oneCaution))
	outcome, err := h.engine.Outcome()
	h.expect(nil, err)
	equal(h, Outcome{}, outcome)
}

func TestOutcomeCanBeAskedLater(t *testing.T) {
	h := newHost(t)
	h.letActionFail()
	h.expect(RunFailed, h.run(Install))
	outcome, err := h.engine.Outcome()
	h.expect(nil, err)
	equal(h, h.outcome, outcome)

	h.letActionSucceed(nil)
	h.expect(nil, h.run(Install))
	outcome, err = h.engine.Outcome()
	h.expect(nil, err)
	equal(h, 0, outcome.Result)
	equal(h, 0, h.lastUpdate.Result)
}

func TestQuestionsLeaveTheOutcomeAlone(t *testing.T) {
	h := newHost(t)
	h.letActionFail()
	h.expect(RunFailed, h.run(Install))
	_, err := h.engine.Directory("absent")
	h.expect(NotFound, err)
	_, err = h.engine.Variable("absent")
	h.expect(NotFound, err)
	outcome, err := h.engine.Outcome()
	h.expect(nil, err)
	equal(h, h.outcome, outcome)
}

func TestContextsRunOneAfterTheOther(t *testing.T) {
	h := newHost(t)
	first := h.engine
	h.expect(nil, h.load(threeFiles))
	second, err := New()
	h.expect(nil, err)
	h.engine = second
	h.expect(nil, h.load(oneCaution))

	h.expect(nil, h.run(Install))
	h.expectFiles(false, false, false)
	h.engine = first
	h.expect(nil, h.run(Install))
	h.expectFiles(true, true, true)
	equal(h, 3, h.updates)
	h.engine = second
	h.expect(nil, h.run(Upgrade))

	h.expect(nil, second.Close())
	h.engine = first
}

func TestRunEndsWhenItsContextIsOver(t *testing.T) {
	h := newHost(t)
	ctx, cancel := context.WithCancel(context.Background())
	h.inUpdate = func(*Outcome) {
		if h.updates == 2 {
			cancel()
		}
	}
	h.expect(nil, h.load(threeFiles))

	_, err := h.engine.Run(ctx, Install)

	h.expect(Stopped, err)
	h.expect(context.Canceled, err)
	equal(h, "temz: The host has stopped the run; what was done before stays. (context canceled)", err.Error())
	equal(h, 2, h.updates)
	h.expectFiles(true, true, false)
	_, err = h.engine.Run(ctx, Install)
	h.expect(context.Canceled, err)
	_, err = h.engine.Plan(ctx, Install, nil)
	h.expect(context.Canceled, err)
	equal(h, 2, h.updates)
}

func TestContextEndsARunThatNobodyWatches(t *testing.T) {
	h := newHost(t)
	ctx, cancel := context.WithCancel(context.Background())
	h.expect(nil, h.load(threeFiles))
	engine, err := New()
	h.expect(nil, err)
	h.expect(nil, engine.Load(folder+`\script.xml`))
	cancel()
	_, err = engine.Run(ctx, Install)
	h.expect(context.Canceled, err)
	h.expect(nil, engine.Close())
	h.expectFiles(false, false, false)
}

func TestContextEndsARunAtItsQuestions(t *testing.T) {
	h := newHost(t)
	ctx, cancel := context.WithCancel(context.Background())
	h.inAsk = func(*Outcome) { cancel() }
	h.answers = []Answer{Retry, Retry}
	h.letActionFail()
	_, err := h.engine.Run(ctx, Install)
	h.expect(Stopped, err)
	h.expect(context.Canceled, err)
	equal(h, 1, h.asks)
	equal(h, 1, h.action.calls)

	ctx, cancel = context.WithCancel(context.Background())
	h.inUpdate = func(*Outcome) { cancel() }
	_, err = h.engine.Run(ctx, Install)
	h.expect(RunFailed, err)
	h.expect(context.Canceled, err)
	equal(h, 1, h.asks)
}

func TestContextEndsARunBeforeAChange(t *testing.T) {
	h := newHost(t)
	ctx, cancel := context.WithCancel(context.Background())
	h.guard()
	h.inUpdate = func(*Outcome) { cancel() }
	h.expect(nil, h.load(threeFiles))
	_, err := h.engine.Run(ctx, Install)
	h.expect(Stopped, err)
	h.expect(context.Canceled, err)
	equal(h, 1, len(h.permissions)) // the directory, which is made before
	h.expectFiles(false, false, false)
}
