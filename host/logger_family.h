// What a device plug-in offers the reference host: a logger to read, and a simulated one to practise on.
// A plug-in exports one function, OrvikPlugin_Family; it stays loaded as long as anything it made lives.
//
// Threads: the family is asked on the host's main (user-interface) thread, and what it makes is made and destroyed there. A
// logger's Connect, ReadSample, Select, Write, Disconnect and Watch run on one thread, which the host chooses before the first of
// them and keeps to the end: the main thread, or one that may serve other loggers of the same port in turn. Loggers of different
// ports run at the same time, so what they share in the plug-in needs a lock. A logger that waits handles the messages of its own
// thread meanwhile, as the transports of comm/transport.h do; the scheduler and other windows belong to the main thread. Before a
// logger is destroyed it is disconnected on its thread. Abort is for any thread.
#pragma once

#include "comm/comm_exception.h"
#include "comm/orvik_connection.h"
#include "comm/serial_orvik.h"
#include "frame/app_link.h"
#include "frame/numeric_arrays.h"
#include "propdb/property_db_interface.h"

// What the host learns while a reading is made. Called on the thread of ReadSample, from within it; must not throw.
class IReadingWatch {
public:
    // The first answer of this reading has arrived, so long ago: the host stamps the reading with that moment. Later calls in the
    // same reading count for nothing.
    virtual void OnAnswer(DWORD microsecondsAgo = 0) = 0;
    // A channel, counted from 0, could not be read: its value stays NaN. (One that was read and has no value is NaN, too, and not
    // told of.) `code` is one of CCommException; `text` says more, or is null for the code's standard text, and is good for the
    // call only.
    virtual void OnChannelFailed(int channel, int code, const char* text) = 0;
    // An answer came after its time-out, this long after its request: whether it could still be used or not. Where several
    // requests may have been meant, after the oldest.
    virtual void OnLateAnswer(DWORD milliseconds) = 0;
    // Something came that could not be used, and this reading goes on waiting: the cause of whatever is too late by that. Code
    // and text as above.
    virtual void OnDamaged(int code, const char* text) { static_cast<void>(code), static_cast<void>(text); }

protected:
    ~IReadingWatch() = default;
};

// What a logger did to set a channel.
struct Written {
    // The number that was sent and the one that was read back, in digits with a point: all that tell them from the next ones that
    // the channel could hold. "nan" where that is no number.
    CString sent, held;
    bool exact;  // what was sent is what was wanted, to its last digit
};

// One logger, described by a property database (docs/formats.md). Destroying it closes its port.
//
// Failures are CCommException objects, thrown by pointer; the catcher deletes them. Whatever else ReadSample lets out, of any
// type, is this reading's failure too, with its text where it has one; so is a wrong number of values.
//
// The connection's state tells the host what goes on, and a logger enters: Connecting and Connected (or Disconnected) in Connect;
// Working at the beginning of ReadSample and Connected at its end, whether or not there were answers; Disconnected, at any time,
// when the line is lost and only a new Connect can help; Closing and Closed in Disconnect.
//
// The host closes a line that was lost and opens it again, time after time: Connect and ReadSample must work again after
// Disconnect, and nothing may grow.
class ILogger {
public:
    virtual ~ILogger() = default;

    // The connection with its state and description, and the port with its trace switches; both belong to the logger.
    virtual COrvikConnection& Connection() = 0;
    virtual CSerialOrvik& Port() = 0;

    // Opens the port, a serial one or one of the network (comm/line_address.h), and sets the line up. `timeout` in milliseconds
    // bounds every single answer, and the opening: after it the logger may ask again, and an answer that still comes must not be
    // taken for another request's.
    virtual void Connect(const char* port, DWORD timeout) = 0;
    // One reading of all channels, in the order of their keys. `values` comes with one NaN for every channel of the description.
    // Channels that could not be read are left NaN and told to the watch; the others keep their values. When nothing at all could
    // be read it throws the first failure, after the watch was told of every channel. A lost line or an abort ends the reading at
    // once by its exception; what was read before stays in `values`, and the other channels are not told of.
    virtual void ReadSample(CDoubleArray& values) = 0;
    virtual void Disconnect() = 0;

    // Which channels the following readings are to have, a byte for each in the order of their keys: 0 leaves it out. It is then
    // not asked for where that saves time, stays NaN, and is not told of. At first, all of them.
    virtual void Select(const CByteArray& due) { static_cast<void>(due); }

    // From now on, and before Connect: no reading is to be passed over. Of a logger that talks by itself whatever it says is then
    // a reading, in the order in which it came and stamped with the time of that, whether or not ReadSample was waiting. What it
    // said and is damaged is a reading without values: the watch hears OnAnswer, and ReadSample throws; the line stays as it is.
    // False: it does not talk by itself, and nothing changes.
    virtual bool Follow() { return false; }

    // Sets a channel, counted from 0, to the number that a text says in digits with a point, as near as it can, and reads it
    // back. A channel that the description does not allow to be written, or that cannot hold such a number, is a CCommException
    // with code
    // 5. Outside of readings, while connected.
    virtual Written Write(int channel, const char* number) {
        static_cast<void>(channel), static_cast<void>(number);
        OrvikThrowCommException(CCommException::AccessDenied, nullptr);
    }

    // Who is told of readings from now on; null ends it. The watch outlives its task or is taken back. Without it a reading is
    // stamped with the moment when ReadSample returns.
    virtual void Watch(IReadingWatch* watch) { static_cast<void>(watch); }

    // Any thread: the exchange under way, or the next one, ends with code 9 (session aborted).
    virtual void Abort() = 0;
};

// The far end of the line for the same description: takes what the master sends, gives what the logger answers.
class ILoggerSimulator {
public:
    virtual ~ILoggerSimulator() = default;
    // `reply` is emptied and gets the answer, or stays empty while a request is not complete (or not for this logger).
    virtual void Receive(const BYTE* data, size_t size, CByteArray& reply) = 0;

    // The address of the line that it will be on, before anything else: a family may have another form on a network.
    virtual void SetLine(const char* address) { static_cast<void>(address); }
    // The line was opened anew: what was half received is forgotten.
    virtual void Reset() {}
    // A fault of its protocol, by name, for so many of 100 answers: "crc", "exception", "unit" ... What can befall any line,
    // noise and silence and the like, is not its affair. False: it has none of that name.
    virtual bool SetFault(const char* name, int percent) {
        static_cast<void>(name), static_cast<void>(percent);
        return false;
    }
    // What a logger that talks by itself says now, in place of what `out` held. Returns the milliseconds after which it wants to
    // be asked again; INFINITE: it only answers.
    virtual DWORD Speak(CByteArray& out) {
        out.RemoveAll();
        return INFINITE;
    }
};

class ILoggerFamily : public IDeviceFamily {
public:
    // The caller owns the result. A description that cannot be understood is a CCommException with code 3 and a text that names
    // the key.
    virtual ILogger* CreateLogger(IPropertyDB& description) = 0;
    virtual ILoggerSimulator* CreateSimulator(IPropertyDB& description) = 0;

    // The keys that a description of this family may have besides the host's own, as a null-terminated list of patterns in which
    // "*" is any one segment ("nSlave", "Channels.*.nRegister"); it lives as long as the plug-in. The host brings keys that
    // differ in the case of letters to this spelling before the family sees them, and refuses all others. Null: the host leaves
    // the family's keys alone.
    virtual const char* const* DescriptionKeys() { return nullptr; }

    // How sure this family is, from 0 (not mine) to 100, that a device of its kind said this by itself on a line; from 70 on it
    // is taken for known. `pause` is the longest time between two of these bytes, in milliseconds. If it may be, the family
    // describes the device in `description`, all but its name and the line's settings, and `shown` gets the lines with what it
    // takes for their fields, for a person to read.
    virtual int Learn(const BYTE* heard, size_t size, DWORD pause, IPropertyDB& description, CString& shown) {
        static_cast<void>(heard), static_cast<void>(size), static_cast<void>(pause);
        static_cast<void>(description), static_cast<void>(shown);
        return 0;
    }

protected:
    ~ILoggerFamily() = default;
};

// extern "C" ILoggerFamily* OrvikPlugin_Family(): the plug-in's one family object, owned by the plug-in.
using OrvikPluginFamilyFunction = ILoggerFamily* (*)();
#define ORVIK_PLUGIN_FAMILY_NAME "OrvikPlugin_Family"
