// What message classes define alike. The definitions differ in names alone, so they stand here once.
#ifndef BCI_MESSAGE_OPERATIONS_H
#define BCI_MESSAGE_OPERATIONS_H

#include "tables.h"

#include <new>

// The accessors. `wire` is the wire structure as an expression.
#define BCI_DEFINE_ACCESSORS(Class, wire)                                                                         \
    SIGSELECT Class::getSigNo() const                                                                             \
    {                                                                                                             \
        return (wire).sigNo;                                                                                      \
    }                                                                                                             \
    VornNodeCommonAddressInfoS Class::getAddressInfo() const                                                      \
    {                                                                                                             \
        return (wire).addressInfo;                                                                                \
    }

// Factory, destructor, accessors and binary size of a class that holds its wire structure as a member.
#define BCI_DEFINE_MESSAGE(Class, member)                                                                         \
    Class::~Class() = default;                                                                                    \
    BciMessageBase* Class::instantiateBciMsg(SIGSELECT sigNo)                                                     \
    {                                                                                                             \
        return new (std::nothrow) Class(sigNo);                                                                   \
    }                                                                                                             \
    BCI_DEFINE_ACCESSORS(Class, member)                                                                           \
    unsigned int Class::getMaxBinaryBufferSize()                                                                  \
    {                                                                                                             \
        return sizeof(member);                                                                                    \
    }

// The factory of a class that holds its wire structure on the heap: without one there is no message.
#define BCI_DEFINE_HEAP_FACTORY(Class)                                                                            \
    BciMessageBase* Class::instantiateBciMsg(SIGSELECT sigNo)                                                     \
    {                                                                                                             \
        auto* const message = new (std::nothrow) Class(sigNo);                                                    \
        if (message != nullptr && message->getMsg() == nullptr)                                                   \
        {                                                                                                         \
            delete message;                                                                                       \
            return nullptr;                                                                                       \
        }                                                                                                         \
        return message;                                                                                           \
    }

// The constructor that all but one of these classes have.
#define BCI_DEFINE_CONSTRUCTOR(Class, member)                                                                     \
    Class::Class(SIGSELECT sigNo) : BciMessageBase(reinterpret_cast<char*>(&(member)), sizeof(member), sigNo) {}

// Codec operations of a class whose rows say everything: its Table, without the enumeration's name.
#define BCI_DEFINE_WRITERS(Class, member, table)                                                                  \
    bool Class::serializeBciMsgToText(commonStream::ostream_text& stream) const                                   \
    {                                                                                                             \
        return bci::writeText(bci::Table::table, &(member), stream);                                              \
    }                                                                                                             \
    bool Class::serializeBciMsgToBinary(commonStream::ostream_binary& stream) const                               \
    {                                                                                                             \
        return bci::writeBinary(bci::Table::table, &(member), stream);                                            \
    }                                                                                                             \
    bool Class::serializeBciMsgToXml(commonStream::ostream_text& stream) const                                    \
    {                                                                                                             \
        return bci::writeXml(bci::Table::table, &(member), stream);                                               \
    }

#define BCI_DEFINE_READERS(Class, member, table)                                                                  \
    bool Class::deserializeBciMsgFromText(commonStream::istream_text& stream)                                     \
    {                                                                                                             \
        return bci::readText(bci::Table::table, &(member), stream);                                               \
    }                                                                                                             \
    bool Class::deserializeBciMsgFromBinary(commonStream::istream_binary& stream)                                 \
    {                                                                                                             \
        return bci::readBinary(bci::Table::table, &(member), stream);                                             \
    }                                                                                                             \
    bool Class::deserializeBciMsgFromXml(commonStream::istream_text& stream)                                      \
    {                                                                                                             \
        return bci::readXml(bci::Table::table, &(member), stream);                                                \
    }

#define BCI_DEFINE_CODECS(Class, member, table)                                                                   \
    BCI_DEFINE_WRITERS(Class, member, table)                                                                      \
    BCI_DEFINE_READERS(Class, member, table)

#endif
