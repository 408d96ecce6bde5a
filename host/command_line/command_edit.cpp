// db edit: change a property database line by line, with undo and redo.
#include "host/command_line/command_edit.h"

#include <utility>

#include "host/command_line/edit_session.h"
#include "host/command_line/line_editor.h"
#include "host/session/database_file.h"
#include "host/session/value_text.h"
#include "host/words/texts.h"

namespace {
// Words are parted by blanks; a stretch in double quotes is one word, or part of one, without its quotes.
std::vector<std::string> WordsOf(const std::string& line) {
    std::vector<std::string> words;
    bool quoted = false, inWord = false;
    for (const char c : line) {
        if (c == '"') {
            quoted = !quoted;
        } else if (!quoted && (c == ' ' || c == '\t')) {
            inWord = false;
            continue;
        }
        if (!inWord) words.emplace_back();
        inWord = true;
        if (c != '"') words.back() += c;
    }
    return words;
}

class Editor {
public:
    explicit Editor(const std::string& path) : m_path(path), m_session(m_db) {
        if (FileExists(path)) LoadDatabase(path, m_db);
        m_db.ResetErrorState(0);
    }

    // Line after line, until "quit" or the end of the input. Changes that nobody saved are told, and are exit code 1.
    ExitCode Run() {
        std::string line;
        while (ReadUserLine("> ", line)) {
            try {
                const std::vector<std::string> words = WordsOf(line);
                if (!words.empty() && !Do(words)) return kDone;
            } catch (const Failure& failure) {
                PrintError(failure.sentence);
            }
        }
        if (!m_unsaved) return kDone;
        throw Failure{kWrongUse, Say(Text::NotSaved, {ToUtf8(m_path)})};
    }

private:
    // False for the end of the session.
    bool Do(const std::vector<std::string>& words) {
        const std::string& name = words[0];
        const bool warned = std::exchange(m_warned, false);  // by the line before this one
        const auto takes = [&](size_t least, size_t most) {
            if (words.size() <= least)
                throw Failure{kWrongUse, Say(Text::ArgumentMissing, {words.size() < 2   ? "KEY"
                                                                     : name == "rename" ? "NAME"
                                                                                        : "VALUE"})};
            if (words.size() > most + 1) throw Failure{kWrongUse, Say(Text::ArgumentTooMany, {ToUtf8(words[most + 1])})};
        };
        if (name == "set") {
            takes(2, 3);
            Changed([&] { m_session.Set(words[1], words.size() > 3 ? words[3] : "", words[2]); });
        } else if (name == "remove") {
            takes(1, 1);
            Changed([&] { m_session.Remove(words[1]); });
        } else if (name == "rename") {
            takes(2, 2);
            Changed([&] { m_session.Rename(words[1], words[2]); });
        } else if (name == "undo" || name == "redo") {
            takes(0, 0);
            Changed([&] {
                if (name == "undo" ? !m_session.Undo() : !m_session.Redo())
                    throw Failure{kWrongUse, Say(Text::NothingLeft, {name})};
            });
        } else if (name == "begin") {
            takes(0, 0);
            m_session.BeginGroup();
        } else if (name == "end") {
            takes(0, 0);
            if (!m_session.EndGroup()) throw Failure{kWrongUse, Say(Text::NoGroup)};
        } else if (name == "list") {
            takes(0, 1);
            ListDatabase(m_db, words.size() > 1 ? words[1] : "", false);
        } else if (name == "get") {
            takes(1, 1);
            PrintValue(m_db, m_path, words[1]);
        } else if (name == "save") {
            takes(0, 0);
            StoreDatabase(m_path, m_db);
            m_unsaved = false;
            TellXmlLosses(m_path, m_db);
        } else if (name == "quit") {
            takes(0, 0);
            if (!m_unsaved || warned) return false;
            m_warned = true;
            throw Failure{kWrongUse, Say(Text::QuitAgain)};
        } else if (name == "help") {
            Print(Say(Text::EditHelp));
        } else {
            throw Failure{kWrongUse, Say(Text::UnknownEdit, {ToUtf8(name)})};
        }
        return true;
    }
    template <class Act>
    void Changed(Act act) {
        act();
        m_unsaved = true;
    }

    const std::string m_path;
    CPropertyDB m_db;
    EditSession m_session;
    bool m_unsaved = false, m_warned = false;
};
}  // namespace

ExitCode EditDatabase(const std::string& path) { return Editor(path).Run(); }
