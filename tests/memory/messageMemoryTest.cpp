// Memory of messages comes from the global operator of the form that was asked for, and goes back to its
// counterpart. The program's own operators take notes; they are a program apart, so that all others keep those of
// the sanitizers.

#include "bciAuditMsg.h"
#include "bciMessage.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <new>
#include <ostream>
#include <vector>

namespace
{

enum class Form
{
    plain,
    nothrow,
    aligned,
    alignedNothrow,
    array,
    arrayNothrow,
    alignedArray,
    deleted,
    alignedDeleted,
    arrayDeleted,
    alignedArrayDeleted
};

struct Call
{
    Form form;
    const void* memory;
    std::size_t size; // that is asked for; 0 for what is given back
    std::size_t alignment;
};

constexpr std::size_t kMostCalls = 16;

Call calls[kMostCalls];
std::size_t callCount = 0;
bool takesNotes = false;
bool fails = false;

void note(Form form, const void* memory, std::size_t size, std::size_t alignment)
{
    if (takesNotes && callCount != kMostCalls)
    {
        calls[callCount++] = {form, memory, size, alignment};
    }
}

// Not to be seen through: the compiler takes memory of `new` that is freed for a mistake.
[[gnu::noinline]] void* allocate(Form form, std::size_t size, std::size_t alignment = 0)
{
    const std::size_t block = alignment != 0 ? (size + alignment - 1) / alignment * alignment : size;
    void* const memory = fails            ? nullptr
                         : alignment != 0 ? std::aligned_alloc(alignment, block)
                                          : std::malloc(block);
    note(form, memory, size, alignment);
    return memory;
}

void* orEnd(void* memory)
{
    return memory != nullptr ? memory : (std::abort(), nullptr);
}

[[gnu::noinline]] void release(Form form, void* memory, std::size_t alignment = 0)
{
    note(form, memory, 0, alignment);
    std::free(memory);
}

std::size_t number(std::align_val_t alignment)
{
    return static_cast<std::size_t>(alignment);
}

} // namespace

void* operator new(std::size_t size)
{
    return orEnd(allocate(Form::plain, size));
}

void* operator new(std::size_t size, const std::nothrow_t& /*noThrow*/) noexcept
{
    return allocate(Form::nothrow, size);
}

void* operator new(std::size_t size, std::align_val_t alignment)
{
    return orEnd(allocate(Form::aligned, size, number(alignment)));
}

void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t& /*noThrow*/) noexcept
{
    return allocate(Form::alignedNothrow, size, number(alignment));
}

void* operator new[](std::size_t size)
{
    return orEnd(allocate(Form::array, size));
}

void* operator new[](std::size_t size, const std::nothrow_t& /*noThrow*/) noexcept
{
    return allocate(Form::arrayNothrow, size);
}

void* operator new[](std::size_t size, std::align_val_t alignment)
{
    return orEnd(allocate(Form::alignedArray, size, number(alignment)));
}

void operator delete(void* memory) noexcept
{
    release(Form::deleted, memory);
}

void operator delete(void* memory, std::size_t /*size*/) noexcept
{
    release(Form::deleted, memory);
}

void operator delete(void* memory, std::align_val_t alignment) noexcept
{
    release(Form::alignedDeleted, memory, number(alignment));
}

void operator delete(void* memory, std::size_t /*size*/, std::align_val_t alignment) noexcept
{
    release(Form::alignedDeleted, memory, number(alignment));
}

void operator delete(void* memory, const std::nothrow_t& /*noThrow*/) noexcept
{
    release(Form::deleted, memory);
}

void operator delete(void* memory, std::align_val_t alignment, const std::nothrow_t& /*noThrow*/) noexcept
{
    release(Form::alignedDeleted, memory, number(alignment));
}

void operator delete[](void* memory) noexcept
{
    release(Form::arrayDeleted, memory);
}

void operator delete[](void* memory, std::size_t /*size*/) noexcept
{
    release(Form::arrayDeleted, memory);
}

void operator delete[](void* memory, const std::nothrow_t& /*noThrow*/) noexcept
{
    release(Form::arrayDeleted, memory);
}

void operator delete[](void* memory, std::align_val_t alignment) noexcept
{
    release(Form::alignedArrayDeleted, memory, number(alignment));
}

void operator delete[](void* memory, std::size_t /*size*/, std::align_val_t alignment) noexcept
{
    release(Form::alignedArrayDeleted, memory, number(alignment));
}

namespace
{

bool operator==(const Call& one, const Call& other)
{
    return one.form == other.form && one.memory == other.memory && one.size == other.size &&
           one.alignment == other.alignment;
}

void PrintTo(const Call& call, std::ostream* out) // NOLINT: the name that the test framework asks for
{
    *out << "form " << static_cast<int>(call.form) << " at " << call.memory << " size " << call.size
         << " alignment " << call.alignment;
}

// What the operators are called with by a function.
template <typename Function>
std::vector<Call> callsOf(Function function, bool withoutMemory = false)
{
    callCount = 0;
    fails = withoutMemory;
    takesNotes = true;
    function();
    takesNotes = false;
    fails = false;
    return {calls, calls + callCount};
}

using Calls = std::vector<Call>;

class Message : public BciAuditCfm
{
public:
    Message() : BciAuditCfm(1) {}
};

// More aligned than an ordinary allocation is.
class alignas(128) AlignedMessage : public Message
{
};

class ThrowingMessage : public Message
{
public:
    ThrowingMessage()
    {
        throw 1; // NOLINT: any exception will do
    }
};

class alignas(128) AlignedThrowingMessage : public ThrowingMessage
{
};

TEST(MessageMemory, IsThatOfThePlainOperators)
{
    MessageBase* message = nullptr;
    const Calls made = callsOf([&] { message = new Message; });
    EXPECT_EQ(made, (Calls{{Form::plain, message, sizeof(Message), 0}}));
    const void* const memory = message;
    EXPECT_EQ(callsOf([&] { delete message; }), (Calls{{Form::deleted, memory, 0, 0}}));
}

TEST(MessageMemory, IsThatOfTheOperatorsThatDoNotThrow)
{
    MessageBase* message = nullptr;
    const Calls made = callsOf([&] { message = new (std::nothrow) Message; });
    EXPECT_EQ(made, (Calls{{Form::nothrow, message, sizeof(Message), 0}}));
    delete message;
    const Calls madeAgain = callsOf([&] { message = new (std::nothrow_t{}) Message; });
    EXPECT_EQ(madeAgain, (Calls{{Form::nothrow, message, sizeof(Message), 0}}));
    const void* const memory = message;
    EXPECT_EQ(callsOf([&] { delete message; }), (Calls{{Form::deleted, memory, 0, 0}}));
}

TEST(MessageMemory, ThatIsNotThereMakesNoMessage)
{
    Message* message = nullptr;
    BciMessageBase* made = nullptr;
    EXPECT_EQ(callsOf([&] { message = new (std::nothrow) Message; }, true),
              (Calls{{Form::nothrow, nullptr, sizeof(Message), 0}}));
    EXPECT_EQ(message, nullptr);
    EXPECT_EQ(callsOf([&] { made = BciAuditCfm::instantiateBciMsg(1); }, true),
              (Calls{{Form::nothrow, nullptr, sizeof(BciAuditCfm), 0}}));
    EXPECT_EQ(made, nullptr);
}

TEST(MessageMemory, OfFactoriesIsThatOfTheOperatorsThatDoNotThrow)
{
    BciMessageBase* message = nullptr;
    const Calls made = callsOf([&] { message = BciAuditCfm::instantiateBciMsg(1); });
    EXPECT_EQ(made, (Calls{{Form::nothrow, message, sizeof(BciAuditCfm), 0}}));
    const void* const memory = message;
    EXPECT_EQ(callsOf([&] { delete message; }), (Calls{{Form::deleted, memory, 0, 0}}));
}

TEST(MessageMemory, OfArraysIsThatOfTheArrayOperators)
{
    Message* messages = nullptr;
    const Calls made = callsOf([&] { messages = new Message[3]; });
    ASSERT_EQ(made.size(), 1U);
    EXPECT_EQ(made[0].form, Form::array);
    EXPECT_GE(made[0].size, 3 * sizeof(Message));
    EXPECT_EQ(callsOf([&] { delete[] messages; }), (Calls{{Form::arrayDeleted, made[0].memory, 0, 0}}));

    const Calls madeWithoutThrowing = callsOf([&] { messages = new (std::nothrow) Message[3]; });
    ASSERT_EQ(madeWithoutThrowing.size(), 1U);
    EXPECT_EQ(madeWithoutThrowing[0].form, Form::arrayNothrow);
    delete[] messages;
    EXPECT_EQ(callsOf([&] { messages = new (std::nothrow) Message[3]; }, true).size(), 1U);
    EXPECT_EQ(messages, nullptr);
}

TEST(MessageMemory, MayBeThatOfTheCaller)
{
    alignas(Message) unsigned char memory[sizeof(Message)];
    Message* message = nullptr;
    EXPECT_EQ(callsOf([&] { message = new (memory) Message; }), Calls());
    EXPECT_EQ(static_cast<void*>(message), memory);
    EXPECT_EQ(message->getDelim(), ':');
    EXPECT_EQ(callsOf([&] { message->~Message(); }), Calls());
}

TEST(MessageMemory, MayBeAskedForWithAnAlignment)
{
    void* memory = nullptr;
    const Calls made = callsOf([&] { memory = Message::operator new(sizeof(Message), std::align_val_t(256)); });
    EXPECT_EQ(made, (Calls{{Form::aligned, memory, sizeof(Message), 256}}));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % 256, 0U);
    ::operator delete(memory, std::align_val_t(256));
}

TEST(MessageMemory, IsGivenBackWhereAConstructorThrows)
{
    const Calls plain = callsOf([] { EXPECT_THROW(new ThrowingMessage, int); });
    ASSERT_GE(plain.size(), 2U);
    EXPECT_EQ(plain.front().form, Form::plain);
    EXPECT_EQ(plain.back(), (Call{Form::deleted, plain.front().memory, 0, 0}));

    const Calls withoutThrowing = callsOf([] { EXPECT_THROW(new (std::nothrow) ThrowingMessage, int); });
    ASSERT_GE(withoutThrowing.size(), 2U);
    EXPECT_EQ(withoutThrowing.front().form, Form::nothrow);
    EXPECT_EQ(withoutThrowing.back(), (Call{Form::deleted, withoutThrowing.front().memory, 0, 0}));
}

TEST(MessageMemory, OfAlignedMessagesIsThatOfTheAlignedOperators)
{
    MessageBase* message = nullptr;
    const Calls made = callsOf([&] { message = new AlignedMessage; });
    EXPECT_EQ(made, (Calls{{Form::aligned, message, sizeof(AlignedMessage), 128}}));
    EXPECT_EQ(reinterpret_cast<std::uintptr_t>(message) % 128, 0U);
    const void* const memory = message;
    EXPECT_EQ(callsOf([&] { delete message; }), (Calls{{Form::alignedDeleted, memory, 0, 128}}));
}

TEST(MessageMemory, OfAlignedMessagesIsThatOfTheAlignedOperatorsThatDoNotThrow)
{
    MessageBase* message = nullptr;
    const Calls made = callsOf([&] { message = new (std::nothrow) AlignedMessage; });
    EXPECT_EQ(made, (Calls{{Form::alignedNothrow, message, sizeof(AlignedMessage), 128}}));
    const void* const memory = message;
    EXPECT_EQ(callsOf([&] { delete message; }), (Calls{{Form::alignedDeleted, memory, 0, 128}}));
}

TEST(MessageMemory, OfAlignedMessagesIsGivenBackWhereAConstructorThrows)
{
    const Calls made = callsOf([] { EXPECT_THROW(new AlignedThrowingMessage, int); });
    ASSERT_GE(made.size(), 2U);
    EXPECT_EQ(made.front().form, Form::aligned);
    EXPECT_EQ(made.back(), (Call{Form::alignedDeleted, made.front().memory, 0, 128}));
}

} // namespace
