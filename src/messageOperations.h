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

// Factory (its argument of new stands on the stack: on the target the C++ library's own is far away), destructor,
// accessors and binary size of a class that holds its wire structure as a member.
#define BCI_DEFINE_MESSAGE(Class, member)                                                                         \
    Class::~Class() = default;                                                                                    \
    BciMessageBase* Class::instantiateBciMsg(SIGSELECT sigNo)                                                     \
    {                                                                                                             \
        return new (std::nothrow_t{}) Class(sigNo);                                                               \
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
        auto* const message = new (std::nothrow_t{}) Class(sigNo);                                                \
        if (message != nullptr && message->getMsg() == nullptr)                                                   \
        {                                                                                                         \
            delete message;                                                                                       \
            return nullptr;                                                                                       \
        }                                                                                                         \
        return message;                                                                                           \
    }

// Saves clearing a buffer beforehand, where fast counts more than small.
#define BCI_WRITES_THROUGH_STREAM                                                                                 \
    if (bci::codec::kForSpeed)                                                                                    \
    m_writesThroughStream = 1

// The constructor that all but one of these classes have.
#define BCI_DEFINE_CONSTRUCTOR(Class, member)                                                                     \
    Class::Class(SIGSELECT sigNo) : BciMessageBase(reinterpret_cast<char*>(&(member)), sizeof(member), sigNo)     \
    {                                                                                                             \
        BCI_WRITES_THROUGH_STREAM;                                                                                \
    }

// A codec operation of a class whose rows say everything. It hands over the table or, where small counts more than
// fast, its number.
#if BCI_OPTIMIZE_SPEED
#define BCI_CODEC(operation, member, table) bci::codec::operation(bci::codec::rows<bci::table>, &(member), stream)
#else
#define BCI_CODEC(operation, member, table) bci::operation(&(member), stream, bci::Table::table)
#endif

#define BCI_DEFINE_WRITERS(Class, member, table)                                                                  \
    bool Class::serializeBciMsgToText(commonStream::ostream_text& stream) const                                   \
    {                                                                                                             \
        return BCI_CODEC(writeText, member, table);                                                               \
    }                                                                                                             \
    bool Class::serializeBciMsgToBinary(commonStream::ostream_binary& stream) const                               \
    {                                                                                                             \
        return BCI_CODEC(writeBinary, member, table);                                                             \
    }                                                                                                             \
    bool Class::serializeBciMsgToXml(commonStream::ostream_text& stream) const                                    \
    {                                                                                                             \
        return BCI_CODEC(writeXml, member, table);                                                                \
    }

#define BCI_DEFINE_READERS(Class, member, table)                                                                  \
    bool Class::deserializeBciMsgFromText(commonStream::istream_text& stream)                                     \
    {                                                                                                             \
        return BCI_CODEC(readText, member, table);                                                                \
    }                                                                                                             \
    bool Class::deserializeBciMsgFromBinary(commonStream::istream_binary& stream)                                 \
    {                                                                                                             \
        return BCI_CODEC(readBinary, member, table);                                                              \
    }                                                                                                             \
    bool Class::deserializeBciMsgFromXml(commonStream::istream_text& stream)                                      \
    {                                                                                                             \
        return BCI_CODEC(readXml, member, table);                                                                 \
    }

#define BCI_DEFINE_CODECS(Class, member, table)                                                                   \
    BCI_DEFINE_WRITERS(Class, member, table)                                                                      \
    BCI_DEFINE_READERS(Class, member, table)

#endif
