// SPDX-License-Identifier: MIT
// The service that measurements call. It uses libdbus and replies with prepared messages, so that
// only the client is measured. The object path selects the amount of data: /n1000 has arrays of
// 1000 elements and 1000 ids.
#include <dbus/dbus.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <numeric>
#include <string>
#include <vector>

namespace
{

constexpr const char *serviceName = "com.varn.bench";

// Some of the measured tools introspect the service first.
constexpr const char *description = R"(<node>
  <interface name="varn.pim">
    <method name="GetValue">
      <arg name="id" type="s" direction="in"/>
      <arg name="value" type="v" direction="out"/>
    </method>
    <method name="SetValue">
      <arg name="id" type="s" direction="in"/>
      <arg name="value" type="v" direction="in"/>
    </method>
    <method name="ListConfigIds">
      <arg name="ids" type="as" direction="out"/>
    </method>
    <signal name="SigUpdate">
      <arg name="updateMsg" type="s"/>
    </signal>
  </interface>
</node>
)";

void appendString(DBusMessage *reply, const char *text)
{
    dbus_message_append_args(reply, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
}

void appendBoxedString(DBusMessage *reply, const char *text)
{
    DBusMessageIter body;
    DBusMessageIter variant;
    dbus_message_iter_init_append(reply, &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_VARIANT, "s", &variant);
    dbus_message_iter_append_basic(&variant, DBUS_TYPE_STRING, &text);
    dbus_message_iter_close_container(&body, &variant);
}

void appendBoxedDoubles(DBusMessage *reply, int count)
{
    std::vector<double> elements(static_cast<std::size_t>(count));
    std::iota(elements.begin(), elements.end(), 0.5);
    const double *const first = elements.data();
    DBusMessageIter body;
    DBusMessageIter variant;
    DBusMessageIter array;
    dbus_message_iter_init_append(reply, &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_VARIANT, "ad", &variant);
    dbus_message_iter_open_container(&variant, DBUS_TYPE_ARRAY, "d", &array);
    dbus_message_iter_append_fixed_array(&array, DBUS_TYPE_DOUBLE, &first, count);
    dbus_message_iter_close_container(&variant, &array);
    dbus_message_iter_close_container(&body, &variant);
}

void appendIds(DBusMessage *reply, int count)
{
    DBusMessageIter body;
    DBusMessageIter array;
    dbus_message_iter_init_append(reply, &body);
    dbus_message_iter_open_container(&body, DBUS_TYPE_ARRAY, "s", &array);
    for (int i = 0; i < count; ++i) {
        const std::string id = ":config:bench:" + std::to_string(i) + ":";
        const char *const text = id.c_str();
        dbus_message_iter_append_basic(&array, DBUS_TYPE_STRING, &text);
    }
    dbus_message_iter_close_container(&body, &array);
}

/// The number in an object path such as /n1000; 0 if there is none.
int sizeAt(const char *path)
{
    return std::strncmp(path, "/n", 2) == 0 ? std::atoi(path + 2) : 0;
}

/// Fills in the reply to the call. The reply to an unknown member is empty.
void appendAnswer(DBusMessage *reply, const std::string &member, const char *path,
                  const std::string &id)
{
    if (member == "Introspect") {
        appendString(reply, description);
    } else if (member == "ListConfigIds") {
        appendIds(reply, sizeAt(path));
    } else if (member == "GetValue" && id.find("doubleARRAY") != std::string::npos) {
        appendBoxedDoubles(reply, sizeAt(path));
    } else if (member == "GetValue") {
        appendBoxedString(reply, "pordo_user");
    }
}

/// Broadcasts a signal with this text so many times, and returns when the bus has them all.
void emitSignals(DBusConnection *bus, const char *text, dbus_uint32_t count)
{
    DBusMessage *const signal = dbus_message_new_signal("/", "varn.pim", "SigUpdate");
    appendString(signal, text);
    for (dbus_uint32_t i = 0; i < count; ++i) {
        DBusMessage *const copy = dbus_message_copy(signal);
        dbus_connection_send(bus, copy, nullptr);
        dbus_message_unref(copy);
        if (i % 1000 == 999) {
            dbus_connection_flush(bus);
        }
    }
    dbus_connection_flush(bus);
    dbus_message_unref(signal);
}

DBusHandlerResult serve(DBusConnection *bus, DBusMessage *call, void * /*data*/)
{
    if (dbus_message_get_type(call) != DBUS_MESSAGE_TYPE_METHOD_CALL) {
        return DBUS_HANDLER_RESULT_NOT_YET_HANDLED;
    }
    const std::string member = dbus_message_get_member(call);
    const char *text = "";
    dbus_uint32_t count = 0;
    if (member == "Emit"
        && dbus_message_get_args(call, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_UINT32, &count,
                                 DBUS_TYPE_INVALID)
            != 0) {
        emitSignals(bus, text, count);
    }
    dbus_message_get_args(call, nullptr, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);

    // Each reply is built once.
    static std::map<std::string, DBusMessage *> answers;
    const char *const path = dbus_message_get_path(call);
    DBusMessage *&kept = answers[member + ' ' + path + ' ' + text];
    if (kept == nullptr) {
        kept = dbus_message_new_method_return(call);
        appendAnswer(kept, member, path, text);
    }
    DBusMessage *const reply = dbus_message_copy(kept);
    dbus_message_set_destination(reply, dbus_message_get_sender(call));
    dbus_message_set_reply_serial(reply, dbus_message_get_serial(call));
    dbus_connection_send(bus, reply, nullptr);
    dbus_message_unref(reply);
    return DBUS_HANDLER_RESULT_HANDLED;
}

} // namespace

int main()
{
    DBusConnection *const bus = dbus_bus_get(DBUS_BUS_SESSION, nullptr);
    if (bus == nullptr || dbus_connection_add_filter(bus, serve, nullptr, nullptr) == 0
        || dbus_bus_request_name(bus, serviceName, 0, nullptr)
            != DBUS_REQUEST_NAME_REPLY_PRIMARY_OWNER) {
        std::fputs("bench_service: there is no bus, or the name is taken\n", stderr);
        return 1;
    }
    dbus_connection_set_max_message_size(bus, 128L << 20);
    std::puts("ready");
    std::fflush(stdout);
    while (dbus_connection_read_write_dispatch(bus, -1) != 0) { }
    return 0;
}
