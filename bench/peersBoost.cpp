// Boost.Serialization: its text, binary and XML archives, header included, over a stream on the buffer. Numbers
// and texts go into the archive one by one, which spares the bookkeeping of classes; the stream's characters need
// no conversion, which spares the archive's own locale.

#include "memoryStream.h"
#include "peers.h"

#include <boost/archive/binary_iarchive.hpp>
#include <boost/archive/binary_oarchive.hpp>
#include <boost/archive/text_iarchive.hpp>
#include <boost/archive/text_oarchive.hpp>
#include <boost/archive/xml_iarchive.hpp>
#include <boost/archive/xml_oarchive.hpp>
#include <boost/serialization/nvp.hpp>
#include <boost/serialization/string.hpp>

namespace bench
{

namespace
{

using boost::serialization::make_nvp;

template <typename Archive>
constexpr bool kIsBinary = std::same_as<Archive, boost::archive::binary_oarchive> ||
                           std::same_as<Archive, boost::archive::binary_iarchive>;

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
            m_archive << make_nvp(Row::kTagText, row.member);
        }
        else if constexpr (kIsBinary<Archive>)
        {
            m_archive.save_binary(row.member, sizeof row.member);
        }
        else
        {
            m_text = textOf(row.member);
            m_archive << make_nvp(Row::kTagText, std::as_const(m_text));
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
            m_archive >> make_nvp(Row::kTagText, row.member);
        }
        else if constexpr (kIsBinary<Archive>)
        {
            m_archive.load_binary(row.member, sizeof row.member);
        }
        else
        {
            m_archive >> make_nvp(Row::kTagText, m_text);
            setText(row.member, m_text);
        }
    }

    Archive& m_archive;
    std::string m_text;
};

template <typename Archive, typename Wire>
[[gnu::noinline]] unsigned int encode(const Wire& wire, char* buffer, unsigned int size)
{
    static OutputStream stream;
    stream.to(buffer, size);
    try
    {
        Archive archive(stream, boost::archive::no_codecvt);
        Writer<Archive> writer(archive);
        if (!visit(wire, writer))
        {
            return 0;
        }
    }
    catch (const boost::archive::archive_exception&)
    {
        return 0;
    }
    return stream ? stream.written() : 0; // the archive's end is written by its destructor
}

template <typename Archive, typename Wire>
[[gnu::noinline]] bool decode(const char* data, unsigned int size, Wire& wire)
{
    static InputStream stream;
    stream.from(data, size);
    try
    {
        Archive archive(stream, boost::archive::no_codecvt);
        Reader<Archive> reader(archive);
        return visit(wire, reader);
    }
    catch (const boost::archive::archive_exception&)
    {
        return false;
    }
}

} // namespace

void registerBoost()
{
    forEachSubject(
        []<typename S>(const S& subject)
        {
            using namespace boost::archive;
            using Wire = typename S::Wire;
            registerOwnForm(subject, Form::text, "boost", &encode<text_oarchive, Wire>,
                            &decode<text_iarchive, Wire>);
            registerOwnForm(subject, Form::binary, "boost", &encode<binary_oarchive, Wire>,
                            &decode<binary_iarchive, Wire>);
            registerOwnForm(subject, Form::xml, "boost", &encode<xml_oarchive, Wire>, &decode<xml_iarchive, Wire>);
        });
}

} // namespace bench
