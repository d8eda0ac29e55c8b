#include "orvanta/platform/SelectionOwner.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>
#include <xcb/xcb.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>

namespace Orvanta::Platform {

namespace {

using Clock = std::chrono::steady_clock;

// A requestor that takes no piece for this long has gone away or given up.
constexpr auto kTransferTimeout = std::chrono::seconds(5);
// How long own() waits for the server to grant the selection.
constexpr auto kOwnTimeout = std::chrono::seconds(3);

template <typename Reply>
using ReplyPtr = std::unique_ptr<Reply, decltype(&std::free)>;

}  // namespace

// The connection and everything the thread keeps about it. XCB rather than Xlib: its errors come
// back as values on the connection, never through the process-wide handlers that the display library
// has set up on its own Xlib connection.
class SelectionOwner::Connection {
public:
    explicit Connection(xcb_connection_t* connection) : c(connection) {}
    ~Connection() { xcb_disconnect(c); }

    bool setUp();
    xcb_atom_t atom(const std::string& name);
    void handle(const xcb_generic_event_t* event);
    void dropStaleTransfers();
    bool isTransferring() const { return !mTransfers.empty(); }

    // Stamps a zero-length change of our own property: the PropertyNotify it brings carries the
    // server time the ownership is taken with.
    void askForTimestamp();
    bool takeSelection(xcb_timestamp_t time, Formats formats);

    xcb_connection_t* c;
    xcb_window_t window = XCB_NONE;
    xcb_atom_t clipboard = XCB_NONE, targets = XCB_NONE, timestamp = XCB_NONE, multiple = XCB_NONE,
               atomPair = XCB_NONE, incr = XCB_NONE, stamp = XCB_NONE;
    std::size_t pieceSize = kPieceSize;
    bool waitingForStamp = false;
    // What the ownership offers; empty when the selection is not ours.
    std::vector<std::pair<xcb_atom_t, std::shared_ptr<const std::string>>> offered;
    xcb_timestamp_t ownedSince = 0;
    bool lostSelection = false;

private:
    // A payload going to a requestor piece by piece.
    struct Transfer {
        xcb_window_t requestor;
        xcb_atom_t property;
        xcb_atom_t type;
        std::shared_ptr<const std::string> data;
        std::size_t sent = 0;
        bool done = false;  // the closing empty piece is sent
        Clock::time_point lastActivity;
    };

    void answer(const xcb_selection_request_event_t& request);
    bool convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property);
    void sendNextPiece(Transfer& transfer);
    void watchRequestor(xcb_window_t requestor, bool on);

    std::vector<Transfer> mTransfers;
};

bool SelectionOwner::Connection::setUp() {
    if (xcb_connection_has_error(c)) return false;
    const xcb_setup_t* setup = xcb_get_setup(c);
    xcb_screen_iterator_t screens = xcb_setup_roots_iterator(setup);
    if (!screens.rem) return false;
    window = xcb_generate_id(c);
    const uint32_t events = XCB_EVENT_MASK_PROPERTY_CHANGE;
    xcb_create_window(c, XCB_COPY_FROM_PARENT, window, screens.data->root, 0, 0, 1, 1, 0,
                      XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);
    clipboard = atom("CLIPBOARD");
    targets = atom("TARGETS");
    timestamp = atom("TIMESTAMP");
    multiple = atom("MULTIPLE");
    atomPair = atom("ATOM_PAIR");
    incr = atom("INCR");
    stamp = atom("ORVANTA_SELECTION_TIME");
    // Requests may be four times the length in 4-byte units, less room for the request's own header.
    const std::size_t maxRequest = std::size_t(xcb_get_maximum_request_length(c)) * 4;
    if (maxRequest > 64) pieceSize = std::min(kPieceSize, maxRequest - 64);
    xcb_flush(c);
    return stamp != XCB_NONE && !xcb_connection_has_error(c);
}

xcb_atom_t SelectionOwner::Connection::atom(const std::string& name) {
    ReplyPtr<xcb_intern_atom_reply_t> reply(
        xcb_intern_atom_reply(c, xcb_intern_atom(c, 0, static_cast<uint16_t>(name.size()), name.data()),
                              nullptr),
        &std::free);
    return reply ? reply->atom : XCB_NONE;
}

void SelectionOwner::Connection::askForTimestamp() {
    xcb_change_property(c, XCB_PROP_MODE_APPEND, window, stamp, XCB_ATOM_STRING, 8, 0, nullptr);
    xcb_flush(c);
    waitingForStamp = true;
}

bool SelectionOwner::Connection::takeSelection(xcb_timestamp_t time, Formats formats) {
    xcb_set_selection_owner(c, window, clipboard, time);
    ReplyPtr<xcb_get_selection_owner_reply_t> reply(
        xcb_get_selection_owner_reply(c, xcb_get_selection_owner(c, clipboard), nullptr), &std::free);
    offered.clear();
    if (!reply || reply->owner != window) return false;
    for (auto& [name, bytes] : formats)
        if (xcb_atom_t target = atom(name))
            offered.emplace_back(target, std::make_shared<const std::string>(std::move(bytes)));
    ownedSince = time;
    return true;
}

void SelectionOwner::Connection::handle(const xcb_generic_event_t* event) {
    switch (event->response_type & 0x7F) {
        case XCB_SELECTION_REQUEST:
            answer(*reinterpret_cast<const xcb_selection_request_event_t*>(event));
            break;
        case XCB_SELECTION_CLEAR: {
            const auto* clear = reinterpret_cast<const xcb_selection_clear_event_t*>(event);
            if (clear->owner == window && clear->selection == clipboard) {
                offered.clear();
                lostSelection = true;
            }
            break;
        }
        case XCB_PROPERTY_NOTIFY: {
            const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
            if (change->window == window && change->atom == stamp) break;  // read by the thread's loop
            if (change->state != XCB_PROPERTY_DELETE) break;
            for (Transfer& transfer : mTransfers)
                if (transfer.requestor == change->window && transfer.property == change->atom) {
                    sendNextPiece(transfer);
                    break;
                }
            std::vector<xcb_window_t> finished;
            for (const Transfer& t : mTransfers)
                if (t.done) finished.push_back(t.requestor);
            std::erase_if(mTransfers, [](const Transfer& t) { return t.done; });
            for (xcb_window_t requestor : finished) watchRequestor(requestor, false);
            break;
        }
        default:
            break;  // errors of requests to vanished requestors: nothing to undo
    }
}

void SelectionOwner::Connection::answer(const xcb_selection_request_event_t& request) {
    // Requestors from before the conventions name no property: the target's name serves.
    const xcb_atom_t property = request.property == XCB_NONE ? request.target : request.property;
    const bool current = request.time == XCB_CURRENT_TIME || request.time >= ownedSince;
    const bool converted = request.selection == clipboard && request.owner == window && !offered.empty() &&
                           current && convert(request.requestor, request.target, property);
    xcb_selection_notify_event_t notify{};
    notify.response_type = XCB_SELECTION_NOTIFY;
    notify.time = request.time;
    notify.requestor = request.requestor;
    notify.selection = request.selection;
    notify.target = request.target;
    notify.property = converted ? property : XCB_NONE;
    char event[32] = {};
    std::memcpy(event, &notify, sizeof notify);
    xcb_send_event(c, 0, request.requestor, XCB_EVENT_MASK_NO_EVENT, event);
    xcb_flush(c);
}

bool SelectionOwner::Connection::convert(xcb_window_t requestor, xcb_atom_t target, xcb_atom_t property) {
    if (target == targets) {
        std::vector<xcb_atom_t> list = {targets, timestamp, multiple};
        for (const auto& [atom, data] : offered) list.push_back(atom);
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_ATOM, 32,
                            static_cast<uint32_t>(list.size()), list.data());
        return true;
    }
    if (target == timestamp) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, XCB_ATOM_INTEGER, 32, 1,
                            &ownedSince);
        return true;
    }
    if (target == multiple) {
        // The property holds (target, property) pairs; each that cannot be converted becomes None.
        ReplyPtr<xcb_get_property_reply_t> reply(
            xcb_get_property_reply(c, xcb_get_property(c, 0, requestor, property, atomPair, 0, 0x10000),
                                   nullptr),
            &std::free);
        if (!reply || reply->format != 32) return false;
        auto* pairs = static_cast<xcb_atom_t*>(xcb_get_property_value(reply.get()));
        const int count = xcb_get_property_value_length(reply.get()) / 8;
        for (int i = 0; i < count; ++i)
            if (pairs[2 * i] == multiple || !convert(requestor, pairs[2 * i], pairs[2 * i + 1]))
                pairs[2 * i + 1] = XCB_NONE;
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, atomPair, 32,
                            static_cast<uint32_t>(2 * count), pairs);
        return true;
    }
    auto it =
        std::find_if(offered.begin(), offered.end(), [target](const auto& f) { return f.first == target; });
    if (it == offered.end()) return false;
    const std::shared_ptr<const std::string>& data = it->second;
    if (data->size() <= pieceSize) {
        xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, target, 8,
                            static_cast<uint32_t>(data->size()), data->data());
        return true;
    }
    // Too large for one request: announce the size as INCR; the pieces follow as the requestor
    // deletes the property, which it does first on reading the announcement.
    watchRequestor(requestor, true);
    const uint32_t size = static_cast<uint32_t>(std::min<std::size_t>(data->size(), UINT32_MAX));
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, requestor, property, incr, 32, 1, &size);
    std::erase_if(mTransfers,
                  [&](const Transfer& t) { return t.requestor == requestor && t.property == property; });
    mTransfers.push_back(Transfer{requestor, property, target, data, 0, false, Clock::now()});
    return true;
}

void SelectionOwner::Connection::sendNextPiece(Transfer& transfer) {
    // After the last piece comes one of length zero, which ends the transfer.
    const std::size_t piece = std::min(transfer.data->size() - transfer.sent, pieceSize);
    xcb_change_property(c, XCB_PROP_MODE_REPLACE, transfer.requestor, transfer.property, transfer.type, 8,
                        static_cast<uint32_t>(piece), transfer.data->data() + transfer.sent);
    transfer.sent += piece;
    transfer.done = piece == 0;
    transfer.lastActivity = Clock::now();
    xcb_flush(c);
}

void SelectionOwner::Connection::watchRequestor(xcb_window_t requestor, bool on) {
    for (const Transfer& t : mTransfers)
        if (t.requestor == requestor) return;  // still watched for another transfer
    const uint32_t events = on ? XCB_EVENT_MASK_PROPERTY_CHANGE : XCB_EVENT_MASK_NO_EVENT;
    xcb_change_window_attributes(c, requestor, XCB_CW_EVENT_MASK, &events);
}

void SelectionOwner::Connection::dropStaleTransfers() {
    const auto now = Clock::now();
    std::vector<xcb_window_t> gone;
    for (const Transfer& t : mTransfers)
        if (now - t.lastActivity > kTransferTimeout) gone.push_back(t.requestor);
    std::erase_if(mTransfers, [&](const Transfer& t) { return now - t.lastActivity > kTransferTimeout; });
    for (xcb_window_t requestor : gone) watchRequestor(requestor, false);
    xcb_flush(c);
}

SelectionOwner& SelectionOwner::instance() {
    static SelectionOwner owner;
    return owner;
}

SelectionOwner::~SelectionOwner() {
    // At exit: the selection goes with the process, as every X client's does.
    std::unique_lock<std::mutex> guard(mLock);
    stopLocked(guard);
}

void SelectionOwner::stopLocked(std::unique_lock<std::mutex>& guard) {
    if (!mThread.joinable()) return;
    mStop = true;
    const char byte = 0;
    [[maybe_unused]] const ssize_t written = write(mWake[1], &byte, 1);
    guard.unlock();
    mThread.join();
    guard.lock();
    mConnection.reset();
    close(mWake[0]);
    close(mWake[1]);
    mWake[0] = mWake[1] = -1;
    mStop = false;
    mOwns = false;
}

bool SelectionOwner::own(const std::string& server, Formats formats) {
    std::unique_lock<std::mutex> guard(mLock);
    if (mThread.joinable() && (mEnded || server != mServer)) stopLocked(guard);
    if (!mThread.joinable()) {
        auto connection = std::make_unique<Connection>(xcb_connect(server.c_str(), nullptr));
        if (!connection->setUp() || pipe2(mWake, O_CLOEXEC | O_NONBLOCK) != 0) return false;
        mServer = server;
        mConnection = std::move(connection);
        mEnded = false;
        mThread = std::thread(&SelectionOwner::serve, this, mConnection.get());
    }
    mPending = std::move(formats);
    const unsigned serial = ++mAsked;
    const char byte = 1;
    [[maybe_unused]] const ssize_t written = write(mWake[1], &byte, 1);
    mAnswered.wait_for(guard, kOwnTimeout, [&] { return mAnswer >= serial || mEnded; });
    return mAnswer >= serial && mGranted;
}

void SelectionOwner::serve(Connection* connection) {
    xcb_connection_t* c = connection->c;
    unsigned asked = 0;  // the serial whose timestamp is awaited
    Formats formats;
    for (;;) {
        while (xcb_generic_event_t* event = xcb_poll_for_event(c)) {
            const auto* change = reinterpret_cast<const xcb_property_notify_event_t*>(event);
            if ((event->response_type & 0x7F) == XCB_PROPERTY_NOTIFY &&
                change->window == connection->window && change->atom == connection->stamp &&
                connection->waitingForStamp) {
                connection->waitingForStamp = false;
                const bool granted = connection->takeSelection(change->time, std::move(formats));
                std::lock_guard<std::mutex> guard(mLock);
                mOwns = granted;
                mGranted = granted;
                mAnswer = asked;
                mAnswered.notify_all();
            } else {
                connection->handle(event);
                if (connection->lostSelection) {
                    connection->lostSelection = false;
                    mOwns = false;
                }
            }
            std::free(event);
        }
        if (xcb_connection_has_error(c)) break;
        connection->dropStaleTransfers();

        pollfd waits[2] = {{xcb_get_file_descriptor(c), POLLIN, 0}, {mWake[0], POLLIN, 0}};
        poll(waits, 2, connection->isTransferring() ? 1000 : -1);
        if (!(waits[1].revents & POLLIN)) continue;
        char bytes[64];
        while (read(mWake[0], bytes, sizeof bytes) > 0) {
        }
        std::lock_guard<std::mutex> guard(mLock);
        if (mStop) break;
        if (mAsked != asked) {
            asked = mAsked;
            formats = std::move(mPending);
            connection->askForTimestamp();
        }
    }
    std::lock_guard<std::mutex> guard(mLock);
    mEnded = true;
    mOwns = false;
    mAnswered.notify_all();
}

}  // namespace Orvanta::Platform
