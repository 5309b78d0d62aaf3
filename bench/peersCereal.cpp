// cereal: its portable binary and its XML archives, over a stream on the buffer. XML goes without indentation.

#include "memoryStream.h"
#include "peers.h"

#include <cereal/archives/portable_binary.hpp>
#include <cereal/archives/xml.hpp>
#include <cereal/types/string.hpp>

namespace bench
{

namespace
{

template <typename Archive>
constexpr bool kIsXml =
    std::same_as<Archive, cereal::XMLOutputArchive> || std::same_as<Archive, cereal::XMLInputArchive>;

template <typename Archive>
class Writer : public Nesting<Writer<Archive>>
{
public:
    explicit Writer(Archive& archive) : m_archive(archive) {}

    template <typename... Rows>
    bool operator()(const Rows&... rows)
    {
        (put(rows), ...);
        return true;
    }

private:
    template <typename Row>
    void put(const Row& row)
    {
        if constexpr (!Row::kIsText)
        {
            m_archive(cereal::make_nvp(Row::kTagText, row.member));
        }
        else if constexpr (kIsXml<Archive>)
        {
            m_text = textOf(row.member);
            m_archive(cereal::make_nvp(Row::kTagText, m_text));
        }
        else
        {
            m_archive(cereal::binary_data(row.member, sizeof row.member));
        }
    }

    Archive& m_archive;
    std::string m_text;
};

template <typename Archive>
class Reader : public Nesting<Reader<Archive>>
{
public:
    explicit Reader(Archive& archive) : m_archive(archive) {}

    template <typename... Rows>
    bool operator()(const Rows&... rows)
    {
        (get(rows), ...);
        return true;
    }

private:
    template <typename Row>
    void get(const Row& row)
    {
        if constexpr (!Row::kIsText)
        {
            m_archive(cereal::make_nvp(Row::kTagText, row.member));
        }
        else if constexpr (kIsXml<Archive>)
        {
            m_archive(cereal::make_nvp(Row::kTagText, m_text));
            setText(row.member, m_text);
        }
        else
        {
            m_archive(cereal::binary_data(row.member, sizeof row.member));
        }
    }

    Archive& m_archive;
    std::string m_text;
};

template <typename Archive>
auto optionsOf()
{
    if constexpr (kIsXml<Archive>)
    {
        return cereal::XMLOutputArchive::Options().indent(false);
    }
    else
    {
        return cereal::PortableBinaryOutputArchive::Options::Default();
    }
}

template <typename Archive, typename Wire>
[[gnu::noinline]] unsigned int encode(const Wire& wire, char* buffer, unsigned int size)
{
    static OutputStream stream;
    stream.to(buffer, size);
    try
    {
        Archive archive(stream, optionsOf<Archive>());
        Writer<Archive> writer(archive);
        if (!visit(wire, writer))
        {
            return 0;
        }
    }
    catch (const cereal::Exception&)
    {
        return 0;
    }
    return stream ? stream.written() : 0; // XML is written by the archive's destructor
}

template <typename Archive, typename Wire>
[[gnu::noinline]] bool decode(const char* data, unsigned int size, Wire& wire)
{
    static InputStream stream;
    stream.from(data, size);
    try
    {
        Archive archive(stream);
        Reader<Archive> reader(archive);
        return visit(wire, reader);
    }
    catch (const cereal::Exception&)
    {
        return false;
    }
}

} // namespace

void registerCereal()
{
    forEachSubject(
        []<typename S>(const S& subject)
        {
            using namespace cereal;
            using Wire = typename S::Wire;
            registerOwnForm(subject, Form::binary, "cereal", &encode<PortableBinaryOutputArchive, Wire>,
                            &decode<PortableBinaryInputArchive, Wire>);
            registerOwnForm(subject, Form::xml, "cereal", &encode<XMLOutputArchive, Wire>,
                            &decode<XMLInputArchive, Wire>);
        });
}

} // namespace bench
