#include "platform/widgets/TaskBar.h"

#include <QGuiApplication>
#include <QWidget>
#include <array>
#include <cstdlib>
#include <memory>
#include <string_view>
#include <xcb/xcb.h>

namespace
{
xcb_atom_t atomNamed(xcb_connection_t *connection, std::string_view name)
{
    const xcb_intern_atom_cookie_t cookie = xcb_intern_atom(connection, 0, uint16_t(name.size()), name.data());
    const std::unique_ptr<xcb_intern_atom_reply_t, decltype(&std::free)> reply(
        xcb_intern_atom_reply(connection, cookie, nullptr), &std::free);
    return reply ? reply->atom : xcb_atom_t(XCB_ATOM_NONE);
}

// A window manager that already has the window is asked; it overlooks what it finds on the window itself.
void askManager(xcb_connection_t *connection, xcb_window_t window, xcb_atom_t stateProperty,
                const std::array<xcb_atom_t, 2> &states)
{
    constexpr uint32_t add = 1;
    constexpr uint32_t fromApplication = 1;
    xcb_client_message_event_t message = {};
    message.response_type = XCB_CLIENT_MESSAGE;
    message.format = 32;
    message.window = window;
    message.type = stateProperty;
    message.data.data32[0] = add;
    message.data.data32[1] = states[0];
    message.data.data32[2] = states[1];
    message.data.data32[3] = fromApplication;
    const xcb_window_t root = xcb_setup_roots_iterator(xcb_get_setup(connection)).data->root;
    xcb_send_event(connection, 0, root, XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY | XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT,
                   reinterpret_cast<const char *>(&message));
    xcb_flush(connection);
}
// Makes the window if need be. Asked for the window of a widget, the toolkit would also give every widget within its
// parent a window, and those of a browser's window would never be painted again.
xcb_window_t windowOf(QWidget &widget)
{
    const bool before = QCoreApplication::testAttribute(Qt::AA_DontCreateNativeWidgetSiblings);
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings, true);
    const auto window = xcb_window_t(widget.winId());
    QCoreApplication::setAttribute(Qt::AA_DontCreateNativeWidgetSiblings, before);
    return window;
}
} // namespace

// The toolkit has no word for it. It adds its own states to those that it finds when it shows a window, and window
// managers take all of them away when the window goes.
void TaskBar::leaveOut(QWidget &window)
{
    // Other platforms may answer for X11 as well, but have no window there.
    if (QGuiApplication::platformName() != u"xcb")
        return;
    xcb_connection_t *connection = qGuiApp->nativeInterface<QNativeInterface::QX11Application>()->connection();
    const std::array<xcb_atom_t, 2> states = {atomNamed(connection, "_NET_WM_STATE_SKIP_TASKBAR"),
                                              atomNamed(connection, "_NET_WM_STATE_SKIP_PAGER")};
    const xcb_atom_t stateProperty = atomNamed(connection, "_NET_WM_STATE");
    const xcb_window_t id = windowOf(window);
    if (window.isVisible())
        askManager(connection, id, stateProperty, states);
    else
        xcb_change_property(connection, XCB_PROP_MODE_REPLACE, id, stateProperty, XCB_ATOM_ATOM, 32, states.size(),
                            states.data());
}
