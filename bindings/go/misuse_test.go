//go:build windows && amd64

package temz

import (
	"errors"
	"math"
	"testing"
)

func TestNullContextIsTold(t *testing.T) {
	h := newHost(t)
	none := new(Engine)
	h.expectOfAll(NullArgument, none)
	h.expect(nil, none.Close())
}

func TestFreedContextIsTold(t *testing.T) {
	h := newHost(t)
	freed, err := New()
	h.expect(nil, err)
	h.expect(nil, freed.Close())
	another, err := New() // which may lie where the other has been
	h.expect(nil, err)
	h.expectOfAll(BadContext, freed)
	h.expect(BadContext, freed.Close())
	h.expect(nil, another.Close())
}

func TestNullArgumentsAreTold(t *testing.T) {
	h := newHost(t)
	h.expect(NullArgument, h.engine.SetTracer(&Tracer{}))
}

func TestScriptMustBeLoaded(t *testing.T) {
	h := newHost(t)
	for _, function := range h.functions() {
		err := function.call(h.engine)
		h.check(errors.Is(err, function.withoutScript), "%s: %v", function.name, err)
	}
	h.expect(NotLoaded, h.run(-1))
	h.expect(NotLoaded, h.plan(-1))
}

func TestScriptIsLoadedOnce(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))
	h.expect(AlreadyLoaded, h.load(oneCaution))
	h.expect(AlreadyLoaded, h.engine.Load("missing.xml"))
	h.expect(nil, h.run(Install))
	h.expectFiles(true, true, true)
}

func TestModesAreThree(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.load(threeFiles))
	for _, mode := range []Mode{-1, 3, math.MaxInt32, math.MinInt32} {
		h.expect(BadMode, h.run(mode))
	}
	equal(h, 0, h.updates)
	for _, mode := range []Mode{Install, Upgrade, Uninstall} {
		h.expect(nil, h.run(mode))
	}
	equal(h, 9, h.updates)
}
