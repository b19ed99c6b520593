#pragma once

#include <cstdint>

#include "elements/CElement.h"
#include "logging/IterfaceProduct.h"

class CMotionElement;

/// What the log tells when an action has failed and that doesn't matter to the script.
inline constexpr char notVitalMessage[] = "The last error isn't vital - ignore.";

using MotionElementPtr = BaseOwner<CMotionElement, CElement>;

/// The base of all elements that do something on the machine. It fixes the shape of a visit: the
/// mode filter, `prepare`, the children, then `execute`; and the policy when `execute` fails:
/// `Vital`, and the host's answer. A class below it replaces single steps and adds no field. The
/// results are 0 for success and anything else for a failure, which is passed up unchanged.
class CMotionElement : public CElement {
public:
    using CElement::CElement;

    /// Comes before the children; `descend` tells whether they and `execute` come at all.
    virtual int32_t prepare(bool& descend, CContext& context);
    /// Whether an element of this name may stand directly in this one.
    virtual bool isChildAllowed(const wchar_t* childName) const;
    /// The action; comes after the children.
    virtual int32_t execute(CContext& context);

    /// One whole visit.
    int32_t runElement(CContext& context);

    /// Whether the element takes part in the context's run mode, by its attribute `On`.
    bool passesOnFilter(CContext& context) const;
    /// Makes, visits and destroys the child elements, one after the other.
    int32_t runChildren(CContext& context);
    /// `execute`, repeated, ignored or passed up as `Vital` and the host's observer will have it.
    int32_t runAction(CContext& context);
    /// Whether a failure of `execute` matters: without `Vital` it does.
    bool isVital(CContext& context) const;

    /// The element's share of the run, in percent.
    void setProgressRange(uint32_t from, uint32_t to);

protected:
    /// Tells the host what is about to be done, with the start of the element's share as progress.
    /// A text of 512 characters or more ends the process.
    void announce(ActionCode action, const std::wstring& text1, const std::wstring& text2,
                  CContext& context) const;

    /// Records a failure that the message alone tells. The result, for a step to pass on, is -1.
    static int32_t fail(const std::wstring& message, CContext& context);

    /// Records that memory is exhausted, which takes none. The result is -1.
    static int32_t failExhausted(CContext& context);

    /// For the constructors of actions and of containers: throw their message when the node isn't
    /// an element of the class's kind.
    void requireActionKind() const;
    void requireContainerKind() const;

    uint32_t progressFrom = 0;
    uint32_t progressTo = 0;

private:
    int32_t runChild(const XmlHandle& child, size_t index, size_t count, CContext& context);
    /// Makes the child of a node; null, with the reason recorded, when it can't be had.
    MotionElementPtr makeChild(const XmlHandle& child, CContext& context);
    uint32_t progressAt(size_t index, size_t count) const;
};
