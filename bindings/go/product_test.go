//go:build windows && amd64

package temz

import (
	"os"
	"testing"
)

const product = `C:\Program Files\Example Works\Greeter`

func (h *host) runProduct(mode Mode) {
	h.Helper()
	furthest := 0
	h.updates = 0
	h.inUpdate = func(now *Outcome) {
		h.check(now.Progress >= furthest && now.Progress <= 100, "%d %%", now.Progress)
		h.check(now.Action.Code != 0, "an action without a code")
		furthest = now.Progress
	}
	h.expect(nil, h.run(mode))
	equal(h, 0, h.outcome.Result)
	h.check(h.updates > 10, "%d updates", h.updates)
}

// expectProduct looks at what the product consists of, besides what is its user's: its files, what its
// service and its custom action write, and its shortcut.
func (h *host) expectProduct(there bool) {
	h.Helper()
	for _, file := range []string{
		product + `\greeter.txt`,
		product + `\greeter-service.exe`,
		product + `\tools.txt`,
		product + `\welcome.txt`,
		product + `\cache\greeting.txt`,
		product + `\doc\manual.txt`,
		`C:\ProgramData\Microsoft\Windows\Start Menu\Programs\Example Works\Greeter.lnk`,
	} {
		h.check(isThere(file) == there, "%s: %v", file, !there)
	}
	h.check(isThere(product+`\doc\notes.txt`), "The user's notes aren't there.")
}

func TestProductIsInstalledUpgradedAndRemoved(t *testing.T) {
	h := newHost(t)
	h.expect(nil, h.engine.Load("install.xml"))
	h.expectVariable("PRODUCT", "Greeter")
	directory, err := h.engine.Directory("APPLICATIONROOTDIRECTORY")
	h.expect(nil, err)
	equal(h, product+`\`, directory)

	h.runProduct(Install)
	h.expectProduct(true)
	h.expect(nil, os.Remove(product+`\greeter.txt`))
	h.runProduct(Upgrade)
	h.expectProduct(true)
	h.runProduct(Uninstall)
	h.expectProduct(false)

	h.expect(nil, h.engine.Unload())
	h.expect(nil, h.load(script(`<Feature><Component>
		<RemoveDirectory Path='C:\Program Files\Example Works'/>
		<RegistryKey Action='remove' Root='HKEY_LOCAL_MACHINE' Key='Software\Example Works'/>
		</Component></Feature>`)))
	h.inUpdate = nil
	h.expect(nil, h.run(Install))
	h.check(!isThere(product), "%s is left", product)
}
