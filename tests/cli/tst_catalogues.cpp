// SPDX-License-Identifier: MIT
// LIST and FILE through the built program: screen, wire and status.
#include "tests/support/movrarun.h"

#include <QTest>

#include <vector>

namespace
{

const QByteArray failed = "Reply Not Valid     err=\n"; // five blanks

// clang-format off
std::vector<MovraRow> listRows()
{
    const Prepare three = answers("ListConfigIds", "([':a:', '', ':é€:'],)");
    return {
        { "LIST CONFIG prints a line for each id", { "@", "/", "LIST", "CONFIG" }, three,
          ":a:\n\n:\xe9?:\n", { "ListConfigIds" }, 0 },
        { "LIST CONFIGS begins with CONFIG", { "@", "/", "LIST", "CONFIGS" }, three,
          ":a:\n\n:\xe9?:\n", { "ListConfigIds" }, 0 },
        { "LIST CONFIGURATION begins with CONFIG", { "@", "/", "LIST", "CONFIGURATION" }, three,
          ":a:\n\n:\xe9?:\n", { "ListConfigIds" }, 0 },
        { "LIST CONFIGRESULT: the first prefix wins", { "@", "/", "LIST", "CONFIGRESULT" }, three,
          ":a:\n\n:\xe9?:\n", { "ListConfigIds" }, 0 },
        { "LIST RESULTS", { "@", "/", "LIST", "RESULTS" }, answers("ListResultIds", "(['r'],)"),
          "r\n", { "ListResultIds" }, 0 },
        { "LIST RESULT", { "@", "/", "LIST", "RESULT" }, answers("ListResultIds", "(['r'],)"),
          "r\n", { "ListResultIds" }, 0 },
        { "LIST ACTIONS", { "@", "/", "LIST", "ACTIONS" }, answers("ListActionIds", "(['%s%n'],)"),
          "%s%n\n", { "ListActionIds" }, 0 },
        { "LIST ACTION", { "@", "/", "LIST", "ACTION" }, answers("ListActionIds", "(['a'],)"),
          "a\n", { "ListActionIds" }, 0 },
        { "LIST RESULTX begins with RESULT", { "@", "/", "LIST", "RESULTX" },
          answers("ListResultIds", "(['r'],)"), "r\n", { "ListResultIds" }, 0 },
        { "LIST ACTIONX begins with ACTION", { "@", "/", "LIST", "ACTIONX" },
          answers("ListActionIds", "(['a'],)"), "a\n", { "ListActionIds" }, 0 },
        { "LIST LOGS prints the one text as it is", { "@", "/", "LIST", "LOGS" },
          answers("LogGetIds", "('a b,c\\nd é€',)"), "a b,c\nd \xe9?\n", { "LogGetIds" }, 0 },
        { "LIST LOG", { "@", "/", "LIST", "LOG" }, answers("LogGetIds", "('a',)"), "a\n",
          { "LogGetIds" }, 0 },
        { "LIST LOGFILE begins with LOG", { "@", "/", "LIST", "LOGFILE" },
          answers("LogGetIds", "('a',)"), "a\n", { "LogGetIds" }, 0 },
        { "LIST LOG: an empty text is an empty line", { "@", "/", "LIST", "LOG" },
          answers("LogGetIds", "('',)"), "\n", { "LogGetIds" }, 0 },
        { "LIST: an empty catalogue prints nothing", { "@", "/", "LIST", "RESULTS" },
          answers("ListResultIds", "(@as [],)"), "", { "ListResultIds" }, 0 },
        { "LIST ignores further words", { "@", "/", "LIST", "RESULTS", "CONFIGS" },
          answers("ListResultIds", "(['r'],)"), "r\n", { "ListResultIds" }, 0 },
        { "LIST: a reply with more behind passes", { "@", "/", "LIST", "RESULTS" },
          answers("ListResultIds", "(['r'], 5)"), "r\n", { "ListResultIds" }, 0 },

        { "LIST alone", { "@", "/", "LIST" }, {}, error("3"), {}, 3 },
        { "LIST with an unknown word has status 3", { "@", "/", "LIST", "NOPE" }, {}, error("3"),
          {}, 3 },
        { "LIST in lower case", { "@", "/", "LIST", "configs" }, {}, error("3"), {}, 3 },
        { "LIST with the beginning of a word", { "@", "/", "LIST", "CONF" }, {}, error("3"), {},
          3 },
        { "LIST with a blank before the word", { "@", "/", "LIST", " LOG" }, {}, error("3"), {},
          3 },
        { "LIST with an empty word", { "@", "/", "LIST", "" }, {}, error("3"), {}, 3 },

        { "LIST CONFIGS: an error reply shows in the status alone",
          { "@", "/", "LIST", "CONFIGS" }, refuses("ListConfigIds"), error("3"),
          { "ListConfigIds" }, 3 },
        { "LIST RESULTS: an error reply", { "@", "/", "LIST", "RESULTS" },
          refuses("ListResultIds"), error("3"), { "ListResultIds" }, 3 },
        { "LIST ACTIONS: an error reply", { "@", "/", "LIST", "ACTIONS" },
          refuses("ListActionIds"), error("3"), { "ListActionIds" }, 3 },
        { "LIST LOGS: an error reply", { "@", "/", "LIST", "LOGS" }, refuses("LogGetIds"),
          error("3"), { "LogGetIds" }, 3 },
        { "LIST CONFIGS: one text is a failed call", { "@", "/", "LIST", "CONFIGS" },
          answers("ListConfigIds", "('a',)"), error("3"), { "ListConfigIds" }, 3 },
        { "LIST CONFIGS: an empty reply is a failed call", { "@", "/", "LIST", "CONFIGS" },
          answers("ListConfigIds", "()"), error("3"), { "ListConfigIds" }, 3 },
        { "LIST LOGS: a list is a failed call", { "@", "/", "LIST", "LOGS" },
          answers("LogGetIds", "(['a'],)"), error("3"), { "LogGetIds" }, 3 },
    };
}

std::vector<MovraRow> fileRows()
{
    return {
        { "FILE SAVE", { "@", "/", "FILE", "SAVE", "night.json" },
          answers("SaveConfig", "(true,)"), "", { "SaveConfig s ('night.json',)" }, 0 },
        { "FILE LOAD", { "@", "/", "FILE", "LOAD", "night.json" },
          answers("LoadConfig", "(true,)"), "", { "LoadConfig s ('night.json',)" }, 0 },
        { "FILE SAVE answered false", { "@", "/", "FILE", "SAVE", "x" },
          answers("SaveConfig", "(false,)"), "", { "SaveConfig s ('x',)" }, 0 },
        { "FILE LOAD answered false", { "@", "/", "FILE", "LOAD", "x" },
          answers("LoadConfig", "(false,)"), "", { "LoadConfig s ('x',)" }, 0 },
        { "FILE passes the name as it is", { "@", "/", "FILE", "SAVE", " ../a b\t" },
          answers("SaveConfig", "(true,)"), "", { "SaveConfig s (' ../a b\\t',)" }, 0 },
        { "FILE with an empty name", { "@", "/", "FILE", "LOAD", "" },
          answers("LoadConfig", "(true,)"), "", { "LoadConfig s ('',)" }, 0 },
        { "FILE: the name is Latin-1", { "@", "/", "FILE", "SAVE", "\xe9\xc3\xa9" },
          answers("SaveConfig", "(true,)"), "", { "SaveConfig s ('éÃ©',)" }, 0 },
        { "FILE ignores further words", { "@", "/", "FILE", "SAVE", "a", "b" },
          answers("SaveConfig", "(true,)"), "", { "SaveConfig s ('a',)" }, 0 },

        { "FILE alone", { "@", "/", "FILE" }, {}, error("3"), {}, 3 },
        { "FILE SAVE without a name", { "@", "/", "FILE", "SAVE" }, {}, error("3"), {}, 3 },
        { "FILE with an unknown word and no name: the positions are tested first",
          { "@", "/", "FILE", "NOPE" }, {}, error("3"), {}, 3 },
        { "FILE with an unknown word has status 2", { "@", "/", "FILE", "NOPE", "a" }, {},
          error("2"), {}, 2 },
        { "FILE in lower case", { "@", "/", "FILE", "save", "a" }, {}, error("2"), {}, 2 },
        { "FILE with a longer word", { "@", "/", "FILE", "SAVES", "a" }, {}, error("2"), {}, 2 },
        { "FILE with the beginning of a word", { "@", "/", "FILE", "LOA", "a" }, {}, error("2"),
          {}, 2 },
        { "FILE with an empty word", { "@", "/", "FILE", "", "a" }, {}, error("2"), {}, 2 },

        { "FILE SAVE: an error reply shows in its line alone", { "@", "/", "FILE", "SAVE", "a" },
          refuses("SaveConfig"), failed, { "SaveConfig s ('a',)" }, 0 },
        { "FILE LOAD: an error reply", { "@", "/", "FILE", "LOAD", "a" }, refuses("LoadConfig"),
          failed, { "LoadConfig s ('a',)" }, 0 },
        { "FILE SAVE: a number is a failed call", { "@", "/", "FILE", "SAVE", "a" },
          answers("SaveConfig", "(1,)"), failed, { "SaveConfig s ('a',)" }, 0 },
        { "FILE LOAD: an empty reply is a failed call", { "@", "/", "FILE", "LOAD", "a" },
          answers("LoadConfig", "()"), failed, { "LoadConfig s ('a',)" }, 0 },
    };
}
// clang-format on

} // namespace

class tst_Catalogues : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void list_data() { lists.addTestData(); }
    void list()
    {
        QFETCH(int, row);
        lists.check(row);
    }
    void file_data() { files.addTestData(); }
    void file()
    {
        QFETCH(int, row);
        files.check(row);
    }

private:
    MovraRows lists { listRows() };
    MovraRows files { fileRows() };
};

QTEST_GUILESS_MAIN(tst_Catalogues)
#include "tst_catalogues.moc"
