// An editing session on a property database: every change is a step that can be undone and done again; steps may be grouped.
#pragma once

#include <string>
#include <vector>

#include "commands/command_manager.h"
#include "propdb/property_db.h"

class EditSession {
public:
    explicit EditSession(CPropertyDB& db) : m_db(db) {}

    // Each is one step. What cannot be done is a Failure, and no step.
    void Set(const std::string& key, const std::string& kind,
             const std::string& text);  // an empty kind: the key's own, else "str"
    void Remove(const std::string& key);
    void Rename(const std::string& key, const std::string& name);

    bool Undo();  // false when there is nothing to undo; ends groups that are open, and undoes them whole
    bool Redo();
    void BeginGroup();
    bool EndGroup();  // false when none has begun
    bool InGroup() const { return m_groups > 0; }

private:
    // Takes the change that `act` makes below these keys into the history.
    template <class Act>
    void Step(const std::vector<std::string>& keys, Act act);

    CPropertyDB& m_db;
    COrvikCommandManager m_history;
    int m_groups = 0;
};
