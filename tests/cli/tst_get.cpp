// SPDX-License-Identifier: MIT
// GET through the built program: forms, every type that a service may send, output, calls and
// status.
#include "tests/support/movrarun.h"

#include <QTest>

#include <string>

namespace
{

const QByteArray failed = "Reply Not Valid   err=\n"; // three blanks

/// A value in a variant, as GVariant text, and what it is printed as.
struct Value {
    const char *name;
    const char *id;
    const char *variant;
    std::string out;
    const char *err = ""; ///< what Qt D-Bus prints on standard error
};

/// A signature value without types is legal, but Qt D-Bus warns.
const char *const ofNoSignature = "QDBusSignature: invalid signature \"\"\n";

const char *const plain = ":x:";

// clang-format off
const Value values[] = {
    { "true", plain, "true", "true\n" },
    { "false", plain, "false", "false\n" },
    { "a byte is a character", plain, "byte 65", "A\n" },
    { "a byte of value 0 is a character", plain, "byte 0", std::string("\0\n", 2) },
    { "a byte above 0x7f", plain, "byte 233", "\xe9\n" },
    { "least int16", plain, "int16 -32768", "-32768\n" },
    { "greatest uint16", plain, "uint16 65535", "65535\n" },
    { "least int32", plain, "-2147483648", "-2147483648\n" },
    { "greatest uint32", plain, "uint32 4294967295", "4294967295\n" },
    { "least int64", plain, "int64 -9223372036854775808", "-9223372036854775808\n" },
    { "greatest uint64", plain, "uint64 18446744073709551615", "18446744073709551615\n" },
    { "a double has all its digits", plain, "0.1", "0.1\n" },
    { "a double of seven digits", plain, "1234567.0", "1234567\n" },
    { "a great double", plain, "1e300", "1e+300\n" },
    { "infinity", plain, "inf", "inf\n" },
    { "a text", plain, "'pordo_user'", "pordo_user\n" },
    { "an empty text is an empty line", plain, "''", "\n" },
    { "formats and line ends in a text", plain, "'%s%n\\ntwo'", "%s%n\ntwo\n" },
    { "a text is printed in Latin-1", plain, "'é € \U0001F600'", "\xe9 ? ??\n" },
    { "an object path has no text", plain, "objectpath '/a'", "\n" },
    { "a signature has no text", plain, "signature 'as'", "\n" },
    { "a signature without types has no text", plain, "signature ''", "\n",
      ofNoSignature },
    { "a file has no text", plain, "handle 0", "\n" },
    { "a variant in a variant has no text", plain, "<5>", "\n" },
    { "a text list is one line each", plain, "['wifi', '', 'é€']", "wifi\n\n\xe9?\n" },
    { "a text list of one", plain, "['wifi']", "wifi\n" },
    { "an empty text list prints nothing", plain, "@as []", "" },
    { "a byte array is a text in UTF-8", plain, "b'abc \\303\\251'", "abc \xe9\n" },
    { "an empty byte array is an empty line", plain, "@ay []", "\n" },
    { "a structure", plain, "('a', <1>, 2)", "Error:  value QDBusArgument StructureType\n" },
    { "a map", plain, "{'a': <1>}", "Error:  value QDBusArgument MapType\n" },
    { "an empty map", plain, "@a{sv} {}", "Error:  value QDBusArgument MapType\n" },

    { "doubles without a kind word", ":cfg:threshold:", "[0.5, 2.0]", "0.5\n2\n" },
    { "doubles", ":a:doubleARRAY:", "[1.1, -0.25, 1e-07]", "1.1\n-0.25\n1e-07\n" },
    { "doubles have six significant digits", ":a:doubleARRAY:",
      "[1234567.0, 0.123456789, 1e300]", "1.23457e+06\n0.123457\n1e+300\n" },
    { "doubles that are no numbers", ":a:doubleARRAY:", "[inf, -inf, nan]", "inf\n-inf\nnan\n" },
    { "no doubles", ":a:doubleARRAY:", "@ad []", "" },
    { "floats are doubles", ":a:floatARRAY:", "[1.5, 1e300]", "1.5\n1e+300\n" },
    { "uint32", ":result:x:uint32ARRAY:", "[uint32 1, 4294967295]", "1\n4294967295\n" },
    { "no uint32", ":a:uint32ARRAY:", "@au []", "" },
    { "int32", ":a:int32ARRAY:", "[-2147483648, 0, 2147483647]", "-2147483648\n0\n2147483647\n" },
    { "no int32", ":a:int32ARRAY:", "@ai []", "" },
    { "uint64", ":a:uint64ARRAY:", "[uint64 0, 18446744073709551615]", "0\n18446744073709551615\n" },
    { "no uint64", ":a:uint64ARRAY:", "@at []", "" },
    { "int64", ":a:int64ARRAY:", "[int64 -9223372036854775808, 9223372036854775807]",
      "-9223372036854775808\n9223372036854775807\n" },
    { "no int64", ":a:int64ARRAY:", "@ax []", "" },
    { "a kind word may be anywhere in the id", "uint32ARRAY", "[uint32 7]", "7\n" },
    { "texts are printed with any kind word", ":a:doubleARRAY:", "['1', 'b']", "1\nb\n" },
    { "a plain value is printed with any kind word", ":a:doubleARRAY:", "5", "5\n" },
    { "a stringARRAY of doubles is read as doubles", ":a:stringARRAY:", "[0.5]", "0.5\n" },

    // Integers of the width that the kind word names are printed with its sign.
    { "int32 on the wire, an unsigned kind", ":a:uint32ARRAY:", "[-1, 5]", "4294967295\n5\n" },
    { "uint32 on the wire, a signed kind", ":a:int32ARRAY:", "[uint32 4294967295]", "-1\n" },
    { "int64 on the wire, an unsigned kind", ":a:uint64ARRAY:", "[int64 -1]",
      "18446744073709551615\n" },
    { "uint64 on the wire, a signed kind", ":a:int64ARRAY:", "[uint64 18446744073709551615]",
      "-1\n" },
    { "an id with both words and 64 bits on the wire", ":a:uint64ARRAY:int32ARRAY:",
      "[uint64 18446744073709551615]", "18446744073709551615\n" },
    { "an id with both words and 32 bits on the wire", ":a:uint64ARRAY:int32ARRAY:", "[-1]",
      "-1\n" },
    { "a kind word in capitals is none", ":a:DOUBLEARRAY:uint32array:", "[-1]", "-1\n" },

    // Other numbers are printed as their own type. Other elements are not printed.
    { "int32 without a kind word", "x", "[1, -2]", "1\n-2\n" },
    { "uint32 for doubles", ":a:doubleARRAY:", "[uint32 4294967295]", "4294967295\n" },
    { "uint64 for int32", ":a:int32ARRAY:", "[uint64 18446744073709551615]",
      "18446744073709551615\n" },
    { "int64 for uint32", ":a:uint32ARRAY:", "[int64 -1]", "-1\n" },
    { "uint32 for uint64", ":a:uint64ARRAY:", "[uint32 4294967295]", "4294967295\n" },
    { "int32 for int64", ":a:int64ARRAY:", "[-1]", "-1\n" },
    { "doubles for int32", ":a:int32ARRAY:", "[1.5]", "1.5\n" },
    { "doubles for uint64", ":a:uint64ARRAY:", "[1234567.0]", "1.23457e+06\n" },
    { "booleans", ":a:doubleARRAY:", "[true, false]", "1\n0\n" },
    { "no booleans", plain, "@ab []", "" },
    { "int16", ":a:uint32ARRAY:", "[int16 -32768, 32767]", "-32768\n32767\n" },
    { "uint16", ":a:int32ARRAY:", "[uint16 65535]", "65535\n" },
    { "no int16", plain, "@an []", "" },
    { "no uint16", plain, "@aq []", "" },
    { "object paths", plain, "[objectpath '/a']", "" },
    { "no object paths", plain, "@ao []", "" },
    { "signatures", plain, "[signature 's']", "" },
    { "files", plain, "[handle 0]", "" },
    { "variants", ":a:doubleARRAY:", "[<1.5>]", "" },
    { "no variants", plain, "@av []", "" },
    { "arrays of arrays", ":a:int32ARRAY:", "[[1, 2], [3]]", "" },
    { "arrays of texts in an array", plain, "[['a']]", "" },
    { "structures in an array", ":a:uint32ARRAY:", "[(1, 's')]", "" },
    { "maps in an array", plain, "[{'a': 1}]", "" },
    { "byte arrays in an array", plain, "[b'abc', b'']", "" },
};
// clang-format on

std::vector<MovraRow> forms()
{
    const auto text = answers("GetValue", "(<'t'>,)");
    const auto status = answers("GetStatus", "(-7,)");
    const auto record =
        answers("GetValueStatus", "((':another:doubleARRAY:', <[uint32 4294967295]>, -7),)");
    return {
        asks("one word is the id", { "GET", ":x:" }, text, "t\n", "GetValue s (':x:',)"),
        asks("one word is the id even if it reads like a sub-word", { "GET", "STATUS" }, text,
             "t\n", "GetValue s ('STATUS',)"),
        asks("an empty id", { "GET", "" }, text, "t\n", "GetValue s ('',)"),
        asks("VALUES begins with VALUE", { "GET", "VALUES", ":x:" }, text, "t\n",
             "GetValue s (':x:',)"),
        asks("STATUS prints the bare number", { "GET", "STATUS", ":x:" }, status, "-7\n",
             "GetStatus s (':x:',)"),
        asks("STATUS2 begins with STATUS", { "GET", "STATUS2", ":x:" }, status, "-7\n",
             "GetStatus s (':x:',)"),
        asks("VAL_STAT prints both, by the id that was typed",
             { "GET", "VAL_STAT", ":x:int32ARRAY:" }, record, "status=-7\n-1\n",
             "GetValueStatus s (':x:int32ARRAY:',)"),
        asks("VAL_STAT_SEVER is VAL_STAT", { "GET", "VAL_STAT_SEVER", ":x:int32ARRAY:" }, record,
             "status=-7\n-1\n", "GetValueStatus s (':x:int32ARRAY:',)"),
        asks("words after the id are ignored", { "GET", "VALUE", ":x:", "y", "z" }, text, "t\n",
             "GetValue s (':x:',)"),
        asks("an empty id after a sub-word", { "GET", "STATUS", "" }, status, "-7\n",
             "GetStatus s ('',)"),
        asks("a record in pieces is a failed call", { "GET", "VAL_STAT", ":x:" },
             answers("GetValueStatus", "(':x:', <1>, 2)"), failed, "GetValueStatus s (':x:',)"),
        asks("the id: e acute typed in UTF-8 is sent as two characters", { "GET", "\xc3\xa9" },
             text, "t\n", "GetValue s ('Ã©',)"),
        asks("the id is not trimmed", { "GET", " x\t" }, text, "t\n", "GetValue s (' x\\t',)"),
        asks("the id after a sub-word is not trimmed", { "GET", "STATUS", " x\t" }, status, "-7\n",
             "GetStatus s (' x\\t',)"),
        asks("the id: a lone byte 0xe9 is sent as e acute", { "GET", "VALUE", "\xe9" }, text, "t\n",
             "GetValue s ('é',)"),
    };
}

/// Every value through both members that send one.
std::vector<MovraRow> rows()
{
    std::vector<MovraRow> table = forms();
    for (const Value &value : values) {
        const QByteArray id = value.id;
        const QByteArray variant = QByteArray("<") + value.variant + ">";
        const QByteArray out = QByteArray::fromStdString(value.out);
        table.push_back(asks(value.name, { "GET", id }, answers("GetValue", "(" + variant + ",)"),
                             out, "GetValue s ('" + id + "',)"));
        table.push_back(
            asks(QByteArray(value.name) + ", by VAL_STAT", { "GET", "VAL_STAT", id },
                 answers("GetValueStatus", "((':echoed:uint32ARRAY:', " + variant + ", 5),)"),
                 "status=5\n" + out, "GetValueStatus s ('" + id + "',)"));
        for (std::size_t i = table.size() - 2; i < table.size(); ++i) {
            table[i].err = value.err;
        }
    }
    return table;
}

struct tst_Get : MovraRowsTest {
    tst_Get()
        : MovraRowsTest(rows())
    {
    }
};

} // namespace

QTEST_GUILESS_MAIN(tst_Get)
