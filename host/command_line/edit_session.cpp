#include "host/command_line/edit_session.h"

#include <memory>

#include "host/session/value_text.h"
#include "host/words/console.h"
#include "host/words/texts.h"
#include "propdb/key_segments.h"

using orvik::detail::FindSeparator;
using orvik::detail::TakeSegment;

namespace {
// What stands at some keys, before and after a change: undoing puts the one back, doing again the other. Entries that are put
// back stand behind the others of their folder, as newly set ones do.
class Change : public CDoCommand {
public:
    Change(CPropertyDB& db, std::vector<std::string> keys) : m_db(db), m_keys(std::move(keys)) { Take(m_before); }
    void TakeAfter() { Take(m_after); }
    int OnUndo() override { return PutBack(m_before); }
    int OnRedo() override { return PutBack(m_after); }

private:
    void Take(CPropertyDB& part) const {
        for (const std::string& key : m_keys) {
            if (m_db.Find(key.c_str())) part.OverlayCopy(&m_db, key.c_str(), nullptr, TRUE);
        }
    }
    int PutBack(const CPropertyDB& part) {
        for (const std::string& key : m_keys) m_db.Remove(key.c_str());
        m_db.OverlayCopy(&part, nullptr, nullptr, TRUE);
        return 1;
    }

    CPropertyDB& m_db;
    const std::vector<std::string> m_keys;
    CPropertyDB m_before, m_after;
};
}  // namespace

template <class Act>
void EditSession::Step(const std::vector<std::string>& keys, Act act) {
    auto change = std::make_unique<Change>(m_db, keys);
    act();  // a Failure leaves the database as it was
    change->TakeAfter();
    m_history.DoCommand(change.release());
}

void EditSession::Set(const std::string& key, const std::string& kind, const std::string& text) {
    const std::string own = KindOf(m_db.Find(key.c_str()) ? m_db.GetValueObject(key.c_str(), TRUE) : nullptr);
    if (!own.empty() && !kind.empty() && kind != own) throw Failure{kWrongUse, Say(Text::KindFixed, {ToUtf8(key), own})};
    // The folder on the way that is not there yet goes with the step.
    std::string top = key;
    for (std::string_view rest = key; !rest.empty();) {
        TakeSegment(rest);
        if (rest.empty()) break;
        const std::string folder = key.substr(0, key.size() - rest.size() - 1);
        if (m_db.Find(folder.c_str())) continue;
        top = folder;
        break;
    }
    Step({top}, [&] { SetFromText(m_db, key, !own.empty() ? own : kind.empty() ? "str" : kind, ToUtf8(text)); });
}

void EditSession::Remove(const std::string& key) {
    Step({key}, [&] {
        if (!m_db.Remove(key.c_str())) throw Failure{kWrongUse, Say(Text::NoSuchEntry, {ToUtf8(key)})};
    });
}

void EditSession::Rename(const std::string& key, const std::string& name) {
    if (!m_db.Find(key.c_str())) throw Failure{kWrongUse, Say(Text::NoSuchEntry, {ToUtf8(key)})};
    size_t last = 0;  // where the entry's own name begins
    for (std::string_view rest = key; !rest.empty(); TakeSegment(rest)) last = key.size() - rest.size();
    const std::string target = key.substr(0, last) + name;
    // A name of several segments would be one that no key leads to.
    if (name.empty() || FindSeparator(name) != name.npos || m_db.Find(target.c_str()))
        throw Failure{kWrongUse, Say(Text::NameTaken, {ToUtf8(target)})};
    Step({key, target}, [&] { m_db.Rename(key.c_str(), name.c_str()); });
}

bool EditSession::Undo() {
    if (!m_history.CanUndo()) return false;
    // A group that is still open ends here: with its beginning undone, an end set later would take older steps into it.
    while (EndGroup()) {
    }
    m_history.UndoLastCommand();
    return true;
}

bool EditSession::Redo() {
    if (!m_history.CanRedo()) return false;
    m_history.RedoLastUndoneCommand();
    return true;
}

void EditSession::BeginGroup() {
    m_history.BeginGroup();
    ++m_groups;
}

bool EditSession::EndGroup() {
    if (m_groups == 0) return false;
    m_history.EndGroup();
    --m_groups;
    return true;
}
