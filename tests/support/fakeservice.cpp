// SPDX-License-Identifier: MIT
#include "tests/support/fakeservice.h"

#include "tests/support/patience.h"

#include <gio/gio.h>
#include <gio/gunixfdlist.h>

#include <QList>

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <cstring>
#include <map>
#include <mutex>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include <unistd.h>

namespace
{

struct GFree {
    void operator()(char *text) const { g_free(text); }
    void operator()(GVariant *value) const { g_variant_unref(value); }
};
using Text = std::unique_ptr<char, GFree>;
using Value = std::unique_ptr<GVariant, GFree>;

[[noreturn]] void fail(const char *what, GError *error)
{
    const std::string message =
        std::string(what) + ": " + (error != nullptr ? error->message : "?");
    g_clear_error(&error);
    throw std::runtime_error(message);
}

GVariant *parse(const QByteArray &text)
{
    GError *error = nullptr;
    GVariant *value = g_variant_parse(nullptr, text.constData(), nullptr, nullptr, &error);
    if (value == nullptr) {
        fail(text.left(200).constData(), error);
    }
    return value;
}

QByteArray describe(GDBusMessage *call)
{
    QByteArray line;
    const QByteArray path = g_dbus_message_get_path(call);
    const QByteArray interface = g_dbus_message_get_interface(call);
    if (path != "/") {
        line += path + ' ';
    }
    if (interface != "varn.pim") {
        line += interface + ' ';
    }
    line += g_dbus_message_get_member(call);
    GVariant *body = g_dbus_message_get_body(call);
    if (body != nullptr) {
        const Text text(g_variant_print(body, TRUE));
        line.append(' ').append(g_dbus_message_get_signature(call)).append(' ').append(text.get());
    }
    return line;
}

} // namespace

struct FakeService::Private {
    enum class Manner { Answer, Refuse, Ignore, Leave };
    struct Answer {
        Manner manner = Manner::Answer;
        Value body;
        QByteArray errorName; ///< of a refusal
        int times = 1;
    };

    GDBusConnection *connection = nullptr;
    QByteArray name;
    guint nameFlags = 0;
    mutable std::mutex mutex;
    std::condition_variable arrived;
    QByteArrayList calls;
    std::map<QByteArray, Answer> answers;
    bool leavesAfterAnswer = false;

    void setAnswer(const QByteArray &member, Answer answer)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        answers[member] = std::move(answer);
    }

    /// Runs on GDBus's own thread.
    static GDBusMessage *filter(GDBusConnection *connection, GDBusMessage *message,
                                gboolean incoming, void *self)
    {
        if (incoming == FALSE
            || g_dbus_message_get_message_type(message) != G_DBUS_MESSAGE_TYPE_METHOD_CALL) {
            return message;
        }
        static_cast<Private *>(self)->serve(connection, message);
        g_object_unref(message);
        return nullptr;
    }

    void serve(GDBusConnection *to, GDBusMessage *call)
    {
        const std::lock_guard<std::mutex> lock(mutex);
        calls.append(describe(call));
        arrived.notify_all();
        const auto found = answers.find(g_dbus_message_get_member(call));
        const Answer *answer = found != answers.end() ? &found->second : nullptr;
        const Manner manner = answer != nullptr ? answer->manner : Manner::Answer;
        if (manner == Manner::Leave) {
            g_dbus_connection_close(to, nullptr, nullptr, nullptr);
        } else if (manner != Manner::Ignore
                   && (g_dbus_message_get_flags(call) & G_DBUS_MESSAGE_FLAGS_NO_REPLY_EXPECTED)
                       == 0) {
            for (int i = answer != nullptr ? answer->times : 1; i > 0; --i) {
                GDBusMessage *reply = replyTo(call, answer);
                g_dbus_connection_send_message(to, reply, G_DBUS_SEND_MESSAGE_FLAGS_NONE, nullptr,
                                               nullptr);
                g_object_unref(reply);
            }
            if (leavesAfterAnswer) {
                g_dbus_connection_flush(to, nullptr, &Private::close, nullptr);
            }
        }
    }

    static void close(GObject *connection, GAsyncResult * /*flushed*/, gpointer /*self*/)
    {
        g_dbus_connection_close(G_DBUS_CONNECTION(connection), nullptr, nullptr, nullptr);
    }

    static GDBusMessage *replyTo(GDBusMessage *call, const Answer *answer)
    {
        GDBusMessage *reply = answer != nullptr && answer->manner == Manner::Refuse
            ? g_dbus_message_new_method_error_literal(call, answer->errorName.constData(), "")
            : g_dbus_message_new_method_reply(call);
        if (answer != nullptr) {
            g_dbus_message_set_body(reply, answer->body.get());
            attachFiles(reply);
        } else if (qstrcmp(g_dbus_message_get_member(call), "Echo") == 0) {
            g_dbus_message_set_body(reply, g_dbus_message_get_body(call));
        }
        return reply;
    }

    /// A handle in a body is an index into the attached files: one file is enough for all.
    static void attachFiles(GDBusMessage *message)
    {
        if (std::strchr(g_dbus_message_get_signature(message), 'h') == nullptr
            && std::strchr(g_dbus_message_get_signature(message), 'v') == nullptr) {
            return;
        }
        GUnixFDList *files = g_unix_fd_list_new();
        g_unix_fd_list_append(files, STDIN_FILENO, nullptr);
        g_dbus_message_set_unix_fd_list(message, files);
        g_object_unref(files);
    }

    Value callBus(const char *interface, const char *member, GVariant *arguments) const
    {
        GError *error = nullptr;
        GVariant *reply = g_dbus_connection_call_sync(
            connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", interface, member,
            arguments, nullptr, G_DBUS_CALL_FLAGS_NONE, G_MAXINT, nullptr, &error);
        if (reply == nullptr) {
            fail(member, error);
        }
        return Value(reply);
    }

    struct Rule {
        QByteArray holder; ///< the unique name of a connection
        QByteArray text;
    };
    std::vector<Rule> rulesFor(const QByteArray &service) const
    {
        const Value reply =
            callBus("org.freedesktop.DBus.Debug.Stats", "GetAllMatchRules", nullptr);
        const Value all(g_variant_get_child_value(reply.get(), 0));
        std::vector<Rule> rules;
        GVariantIter connections;
        g_variant_iter_init(&connections, all.get());
        const char *holder = nullptr;
        GVariant *ofConnection = nullptr;
        while (g_variant_iter_loop(&connections, "{&s@as}", &holder, &ofConnection) != FALSE) {
            GVariantIter each;
            g_variant_iter_init(&each, ofConnection);
            const char *rule = nullptr;
            while (g_variant_iter_loop(&each, "&s", &rule) != FALSE) {
                if (std::strstr(rule, ("sender='" + service + '\'').constData()) != nullptr) {
                    rules.push_back({ holder, rule });
                }
            }
        }
        return rules;
    }
};

FakeService::FakeService(const QByteArray &name, const QByteArray &bus, Ownership ownership)
    : d(std::make_unique<Private>())
{
    GError *error = nullptr;
    d->connection = g_dbus_connection_new_for_address_sync(
        bus.constData(),
        static_cast<GDBusConnectionFlags>(G_DBUS_CONNECTION_FLAGS_AUTHENTICATION_CLIENT
                                          | G_DBUS_CONNECTION_FLAGS_MESSAGE_BUS_CONNECTION),
        nullptr, nullptr, &error);
    if (d->connection == nullptr) {
        fail("no bus for the fake service", error);
    }
    g_dbus_connection_add_filter(d->connection, &Private::filter, d.get(), nullptr);
    constexpr guint allowReplacement = 1;
    constexpr guint replaceExisting = 2;
    constexpr guint doNotQueue = 4;
    d->name = name;
    d->nameFlags =
        ownership == Ownership::Sole ? doNotQueue : allowReplacement | replaceExisting | doNotQueue;
    takeName();
}

FakeService::~FakeService()
{
    // The bus may handle the next service before it notices the closed connection. The name would
    // still be taken. Errors do not matter: no service follows on a bus that has failed.
    const Value reply(g_dbus_connection_call_sync(
        d->connection, "org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus",
        "ReleaseName", g_variant_new("(s)", d->name.constData()), nullptr, G_DBUS_CALL_FLAGS_NONE,
        patienceMs, nullptr, nullptr));
    g_dbus_connection_close_sync(d->connection, nullptr, nullptr);
    g_object_unref(d->connection);
}

void FakeService::answer(const QByteArray &member, const QByteArray &body)
{
    d->setAnswer(member, { Private::Manner::Answer, Value(parse(body)), {} });
}

void FakeService::answerTwice(const QByteArray &member, const QByteArray &body)
{
    d->setAnswer(member, { Private::Manner::Answer, Value(parse(body)), {}, 2 });
}

void FakeService::refuse(const QByteArray &member, const QByteArray &errorName,
                         const QByteArray &message)
{
    d->setAnswer(member,
                 { Private::Manner::Refuse,
                   Value(g_variant_ref_sink(g_variant_new("(s)", message.constData()))),
                   errorName });
}

void FakeService::refuseWith(const QByteArray &member, const QByteArray &errorName,
                             const QByteArray &body)
{
    d->setAnswer(member, { Private::Manner::Refuse, Value(parse(body)), errorName });
}

void FakeService::ignore(const QByteArray &member)
{
    d->setAnswer(member, { Private::Manner::Ignore, nullptr, {} });
}

void FakeService::leaveOn(const QByteArray &member)
{
    d->setAnswer(member, { Private::Manner::Leave, nullptr, {} });
}

void FakeService::takeName()
{
    const Value reply = d->callBus("org.freedesktop.DBus", "RequestName",
                                   g_variant_new("(su)", d->name.constData(), d->nameFlags));
    guint outcome = 0;
    g_variant_get(reply.get(), "(u)", &outcome);
    constexpr guint exists = 3;
    if (outcome == exists) {
        throw std::runtime_error("the name " + d->name.toStdString() + " is taken");
    }
}

void FakeService::leaveAfterAnswer()
{
    const std::lock_guard<std::mutex> lock(d->mutex);
    d->leavesAfterAnswer = true;
}

QByteArrayList FakeService::takeCalls()
{
    return waitForCalls(0);
}

QByteArrayList FakeService::waitForCalls(int count)
{
    std::unique_lock<std::mutex> lock(d->mutex);
    d->arrived.wait_for(lock, patience, [this, count] { return d->calls.size() >= count; });
    QByteArrayList taken;
    taken.swap(d->calls);
    return taken;
}

void FakeService::emitSignal(const QByteArray &member, const QByteArray &body,
                             const QByteArray &path, const QByteArray &interface, After after)
{
    emitSignalTo({}, member, body, path, interface);
    if (after == After::Wait) {
        waitUntilSent();
    }
}

void FakeService::emitSignalTo(const QByteArray &destination, const QByteArray &member,
                               const QByteArray &body, const QByteArray &path,
                               const QByteArray &interface)
{
    GError *error = nullptr;
    const Value arguments(parse(body));
    if (g_dbus_connection_emit_signal(
            d->connection, destination.isEmpty() ? nullptr : destination.constData(),
            path.constData(), interface.constData(), member.constData(), arguments.get(), &error)
        == FALSE) {
        fail(member.constData(), error);
    }
}

void FakeService::waitUntilSent() const
{
    // The bus handles the messages of a connection in order: the reply follows the signals.
    (void)d->callBus("org.freedesktop.DBus", "GetId", nullptr);
}

QByteArrayList FakeService::matchRules(const QByteArray &service) const
{
    QByteArrayList texts;
    for (const Private::Rule &rule : d->rulesFor(service)) {
        texts.append(rule.text);
    }
    return texts;
}

QByteArrayList FakeService::listeners(const QByteArray &service) const
{
    QByteArrayList names;
    for (const Private::Rule &rule : d->rulesFor(service)) {
        names.append(rule.holder);
    }
    return names;
}

bool FakeService::waitUntilTaken(const QByteArray &service) const
{
    waitUntilSent();
    const std::vector<Private::Rule> rules = d->rulesFor(service);
    return std::all_of(rules.cbegin(), rules.cend(), [this](const Private::Rule &rule) {
        // The bus library of the receiver answers this in order, even if its main thread is busy.
        const Value reply(g_dbus_connection_call_sync(
            d->connection, rule.holder.constData(), "/", "org.freedesktop.DBus.Peer", "Ping",
            nullptr, nullptr, G_DBUS_CALL_FLAGS_NONE, patienceMs, nullptr, nullptr));
        return reply != nullptr;
    });
}
