// What a broker, or the settings that lead to it, may earn: texts of the module, whose first %s is a key or the broker's address.
// Pure functions, any thread.
#pragma once

#include "afx/string.h"
#include "platform/house_text.h"
#include "plugins/support/description_reading.h"
#include "record/sink.h"

namespace mqtt {

using namespace orvik::description;

enum MqttComplaint : UINT {
    NoHost = 8201,
    NoPort = 8202,

    NoSuchHost = 8210,
    NameUnknownYet,
    Refused,
    NoAnswer,
    NoRoute,
    OtherError = 8218,  // and its number

    NoScheme = 8500,
    NeedsToo,    // and another key
    ForTlsOnly,
    NoTopic,
    ForFormOnly,  // and the form
    NoLevel,
    CannotBeRead,  // and the file, and why
    NoFirstLine,   // and the file

    BrokerRefuses = 8510,  // and why
    BrokerIsSilent,
    ConnectionLost,    // and why
    NotAcknowledged,
    MessageRefused,    // and its topic, and why
    TlsFailed,         // and why
    GivenUp,
};

template <class... Args>
CSinkFailure Failure(MqttComplaint complaint, const std::string& first, Args... args) {
    CString picture, sentence;
    picture.LoadString(complaint);
    sentence.Format(picture, first.c_str(), args...);
    return CSinkFailure(OrvikUtf8FromText(sentence.GetString()));
}

}  // namespace mqtt
