// XML read with pugixml: the document parsed from a copy, as it must stay as it is, and every element looked up by
// its name. Parsing takes the library's fastest options, which all that these documents need.

#include "peers.h"

#include <pugixml.hpp>

namespace bench
{

namespace
{

// Elements from the whole document, each time.
class ByChild
{
public:
    explicit ByChild(const pugi::xml_document& document) : m_document(document) {}

    pugi::xml_node find(const char* name)
    {
        return m_document.child(name);
    }

private:
    const pugi::xml_document& m_document;
};

// Elements from the one found last on, and only then from the whole document.
class ByNext
{
public:
    explicit ByNext(const pugi::xml_document& document) : m_document(document) {}

    pugi::xml_node find(const char* name)
    {
        pugi::xml_node node = m_last.next_sibling(name);
        if (!node)
        {
            node = m_document.child(name);
        }
        m_last = node;
        return node;
    }

private:
    const pugi::xml_document& m_document;
    pugi::xml_node m_last;
};

// What the format puts around values.
std::string_view withoutLayout(std::string_view content)
{
    constexpr const char* kSpace = "\n\t ";
    const std::size_t begin = std::min(content.find_first_not_of(kSpace), content.size());
    content.remove_prefix(begin);
    return content.substr(0, content.find_last_not_of(kSpace) + 1);
}

template <typename Lookup>
class Reader : public Nesting<Reader<Lookup>>
{
public:
    explicit Reader(const pugi::xml_document& document) : m_lookup(document) {}

    template <typename... Rows>
    BENCH_INLINE bool operator()(const Rows&... rows)
    {
        return (get(rows) && ...);
    }

private:
    template <typename Row>
    bool get(const Row& row)
    {
        if constexpr (Row::kOddity == Oddity::notReadFromXml)
        {
            return true;
        }
        else
        {
            const pugi::xml_node node = find<Row>();
            if (!node)
            {
                return false;
            }
            set(row.member, node.text());
            return true;
        }
    }

    template <typename Row>
    BENCH_INLINE pugi::xml_node find()
    {
        constexpr const Name& kName = Row::kName;
        if constexpr (kName.first == 0)
        {
            return m_lookup.find(kName.text);
        }
        else
        {
            char name[sizeof kName.text];
            kName.put(name, this->m_indexes);
            name[kName.size] = '\0';
            return m_lookup.find(name);
        }
    }

    template <typename Number>
    static void set(Number& number, const pugi::xml_text& text)
    {
        if constexpr (std::is_signed_v<Number>)
        {
            number = static_cast<Number>(text.as_int());
        }
        else
        {
            number = static_cast<Number>(text.as_uint());
        }
    }

    template <std::size_t N>
    static void set(U8 (&to)[N], const pugi::xml_text& text)
    {
        setText(to, withoutLayout(text.get()));
    }

    Lookup m_lookup;
};

template <typename Lookup, typename Wire>
[[gnu::noinline]] bool decode(const char* data, unsigned int size, Wire& wire)
{
    static pugi::xml_document document;
    if (!document.load_buffer(data, size, pugi::parse_minimal, pugi::encoding_utf8))
    {
        return false;
    }
    Reader<Lookup> reader(document);
    return visit(wire, reader);
}

} // namespace

void registerPugixml()
{
    forEachSubject(
        []<typename S>(const S& subject)
        {
            for (const Form form : {Form::xml, Form::xmlReversed})
            {
                registerSameDecode(subject, form, "pugixml", &decode<ByChild, typename S::Wire>);
                registerSameDecode(subject, form, "pugixml-next", &decode<ByNext, typename S::Wire>);
            }
        });
}

} // namespace bench
