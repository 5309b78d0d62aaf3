-- Reads the forms by the schema above, as strictly as "bci check", and shows what it finds. It knows no field.
-- luacheck: read globals schema

-- ---- bytes; positions count from 0

local function byteAt(bytes, position)
    return bytes:sub(position + 1, position + 1)
end

local function cut(bytes, from, length)
    return bytes:sub(from + 1, length and from + length)
end

-- Where a text stands, from a place on, or nil.
local function find(bytes, text, from)
    local at = bytes:find(text, from + 1, true)
    return at and at - 1
end

-- Where a character of a set ("[...]") stands, or nil.
local function findSet(bytes, set, from)
    local at = bytes:find(set, from + 1)
    return at and at - 1
end

-- Where a text stands last, not behind a place, or nil.
local function findLast(bytes, text, most)
    local last
    local at = find(bytes, text, 0)
    while at and at <= most do
        last = at
        at = find(bytes, text, at + 1)
    end
    return last
end

local function startsWith(bytes, text, at)
    return bytes:sub(at + 1, at + #text) == text
end

local function isBlank(character)
    return character ~= "" and (" \t\r\n\v\f\0"):find(character, 1, true) ~= nil
end

local function behindBlanks(bytes, from)
    while isBlank(byteAt(bytes, from)) do
        from = from + 1
    end
    return from
end

local function decimal(number)
    return string.format("%d", number)
end

-- How many bytes the character at a place has in UTF-8; nil if it is none.
local function characterLength(bytes, at)
    local first, second = bytes:byte(at + 1, at + 2)
    if first < 0x80 then
        return 1
    end
    local length = first >= 0xF0 and 4 or first >= 0xE0 and 3 or 2
    if first < 0xC2 or first > 0xF4 or #bytes < at + length or (first == 0xE0 and second < 0xA0) or
        (first == 0xED and second >= 0xA0) or (first == 0xF0 and second < 0x90) or
        (first == 0xF4 and second >= 0x90) then
        return nil
    end
    for i = at + 2, at + length do
        local byte = bytes:byte(i)
        if byte < 0x80 or byte > 0xBF then
            return nil
        end
    end
    return length
end

-- On one line and without control characters.
local function escaped(bytes)
    local shown = {}
    local at = 0
    while at < #bytes do
        local length = characterLength(bytes, at)
        local character = cut(bytes, at, length or 1)
        if character == "\\" then
            character = "\\\\"
        elseif length == nil or character:find("^[\0-\31\127]") or character:find("^\194[\128-\159]") then
            length = 1
            character = string.format("\\x%02X", bytes:byte(at + 1))
        end
        shown[#shown + 1] = character
        at = at + length
    end
    return table.concat(shown)
end

-- A piece of input for a message.
local function quote(bytes)
    local longest = 40
    local length = math.min(#bytes, longest)
    while length ~= 0 and length ~= #bytes and byteAt(bytes, length):find("^[\128-\191]") do
        length = length - 1 -- not within a character
    end
    return "'" .. escaped(cut(bytes, 0, length)) .. (#bytes > length and "'..." or "'")
end

local function unsignedNumber(bytes, reversed)
    local number = 0
    for i = 1, #bytes do
        number = number * 256 + bytes:byte(reversed and #bytes + 1 - i or i)
    end
    return number
end

-- ---- what a field is

local ranges = {
    u8 = {0, 0xFF},
    u16 = {0, 0xFFFF},
    s16 = {-0x8000, 0x7FFF},
    u32 = {0, 0xFFFFFFFF},
    s32 = {-0x80000000, 0x7FFFFFFF}
}

-- Names as in XML. A tag that ends in underscores receives the indexes of its list element there.
local function elementName(tag, indexes)
    if not indexes or tag:sub(-1) ~= "_" then
        return tag
    end
    if tag:sub(-2) == "__" then
        return tag:sub(1, -2) .. indexes[1] .. "_" .. (indexes[2] or 0)
    end
    return tag .. indexes[1]
end

local function fieldName(field, indexes)
    local brackets = indexes and field.tag:sub(-1) ~= "_"
    return elementName(field.tag, indexes) .. (brackets and "[" .. indexes[1] .. "]" or "")
end

-- Texts have a filter of their own where others of the name are numbers.
local function filterName(field)
    local name = field.tag:gsub("_+$", "")
    local textName = name .. "_text"
    return field.type == "text" and schema.filters[textName] and textName or name
end

-- ---- which signal it is

-- The signal whose number and ':' stand at a place, or nil.
local function textSignal(bytes, at)
    local digits = bytes:match("^(%d+):", at + 1)
    return digits and #digits <= 10 and schema.signals[tonumber(digits)] or nil
end

-- The signal of a first word, and whether the word is the other way round.
local function binarySignal(bytes, at)
    if #bytes < at + 4 then
        return nil
    end
    local word = cut(bytes, at, 4)
    local signal = schema.signals[unsignedNumber(word, false)]
    if signal then
        return signal, false
    end
    signal = schema.signals[unsignedNumber(word, true)]
    return signal, signal ~= nil
end

-- What a rendering is by its beginning: its form, or nil, its signal, if that is known, and the order of its first
-- word.
local function recognise(bytes)
    local signal, little = binarySignal(bytes, 0)
    if signal then
        return "binary", signal, little
    end
    if bytes:find("^%d+:") then
        return "text", textSignal(bytes, 0)
    end
    if not bytes:find("^[ \t\r\n]*<") then
        return nil
    end
    local opening = "<" .. schema.number .. ">"
    local tag = find(bytes, opening, 0)
    if tag then
        local digits = bytes:match("^[ \t\r\n]*(%d*)", tag + #opening + 1):sub(1, 11)
        signal = textSignal(digits .. ":", 0)
    end
    return "xml", signal
end

local function nextBinary(bytes, from)
    for at = from, #bytes - 4 do
        if binarySignal(bytes, at) then
            return at
        end
    end
    return #bytes
end

-- Behind the zeros of a buffer that was larger; the number of a little-endian host may begin with a zero.
local function behindZeros(bytes, from)
    while byteAt(bytes, from) == "\0" and not binarySignal(bytes, from) do
        from = from + 1
    end
    return from
end

-- ---- one record

local Reader = {}
Reader.__index = Reader

-- Reads the fields of a rendering. Its members afterwards:
--   fields     in order: field, name, position and length of the value, number, group (of a list element)
--   findings   in order: code, field (a name), position, length, expected, found
--   values     numbers, by tag; of list elements, the last
--   stop       behind what was read
--   over       whether it broke off there
local function read(bytes, form, signal, little)
    local self = setmetatable({
        bytes = bytes,
        form = form,
        signal = signal,
        little = little,
        position = 0,
        over = false,
        fields = {},
        findings = {},
        values = {},
        places = {}, -- of the numbers in `values`
        lost = {},
        inLayout = true,
        layoutEnd = 0,
        layoutNoted = false,
        readUpTo = {}, -- by the name of an element
        openings = {}
    }, Reader)
    self:group(schema.classes[signal.class])
    if form == "xml" and not self.over then
        self:lookAtOtherElements()
    end
    self.stop = self.position
    return self
end

function Reader:tell(code, place, position, length, expected, found)
    table.insert(self.findings, {
        code = code,
        field = place and fieldName(place.field, place.indexes),
        position = position,
        length = length,
        expected = expected,
        found = found
    })
end

function Reader:breakOff(...)
    self:tell(...)
    self.over = true
end

function Reader:lose(place)
    self.lost[place.field.tag] = true
end

function Reader:foundAt(position)
    return position >= #self.bytes and "the end" or quote(byteAt(self.bytes, position))
end

function Reader:keep(place, position, length, number)
    if number then
        self.values[place.field.tag] = number
        self.places[place.field.tag] = {field = place.field, indexes = place.indexes, position = position}
    end
    local group = self.within
    while group do
        group.first = math.min(group.first or position, position)
        group.last = math.max(group.last or 0, position + length)
        group = group.outer
    end
    table.insert(self.fields, {
        field = place.field,
        name = fieldName(place.field, place.indexes),
        position = position,
        length = length,
        number = number,
        group = self.within
    })
end

-- Whether a count that has been read is not above its bound.
function Reader:expectAtMost(tag, most, breaks)
    if self.lost[tag] then
        self.over = self.over or breaks -- and that has been told
        return false
    end
    local actual = self.values[tag]
    if actual <= most then
        return true
    end
    local place = self.places[tag]
    local found = decimal(actual)
    self:tell("count-above-bound", place, place.position, self.form == "binary" and place.field.size or #found,
        "at most " .. most, found)
    self.over = self.over or breaks
    return false
end

function Reader:group(parts, indexes)
    for _, part in ipairs(parts) do
        self[part.part](self, part, indexes)
        if self.over then
            return
        end
    end
end

function Reader:field(field, indexes)
    local place = {field = field, indexes = indexes}
    if self.form == "binary" then
        self:takeBytes(place)
    elseif field.type == "text" then
        self:takeText(place)
    else
        self:takeNumber(place)
    end
end

function Reader:list(list, indexes)
    if not self:expectAtMost(list.count, list.bound, true) then
        return
    end
    local count = self.values[list.count]
    local counter = self.places[list.count]
    if self.form == "text" and list.delimiterWhenEmpty and count == 0 then
        -- The writers put it, and the readers do not want it.
        if byteAt(self.bytes, self.position) == ":" then
            self.position = self.position + 1
        else
            self:tell("list-delimiter", {field = counter.field}, self.position, 0,
                "':' in the place of the empty list", "none")
        end
    end
    local outer = self.within
    for i = 0, count - 1 do
        local inner = indexes and {indexes[1], i} or {i}
        local element = {
            outer = outer,
            label = fieldName(counter.field, indexes) .. ": element " .. i
        }
        self.within = #list.content > 1 and element or outer
        self:group(list.content, inner)
        if self.over then
            return
        end
    end
    self.within = outer
    if self.form == "binary" and list.whole then
        self:skipUnused((list.bound - count) * list.stride, counter)
    end
end

function Reader:choice(choice, indexes)
    local tag = choice.selector
    if self.lost[tag] then
        self.over = true -- and that has been told
        return
    end
    local value = self.values[tag]
    local selector = self.places[tag]
    local chosen
    local known = {}
    for _, case in ipairs(choice.cases) do
        known[#known + 1] = decimal(case.value)
        if case.value == value then
            chosen = case
        end
    end
    if not chosen then
        local found = decimal(value)
        self:breakOff("unknown-choice", selector, selector.position,
            self.form == "binary" and selector.field.size or #found, "one of " .. table.concat(known, ", "), found)
        return
    end
    if self.within then
        self.within.label = self.within.label .. ", " .. chosen.member
    end
    local stop = self.position + choice.size
    self:group(chosen.content, indexes)
    if self.form == "binary" and not self.over then
        self:skipUnused(stop - self.position, selector)
    end
end

function Reader:entries(entries)
    if self.lost[entries.count] then
        self.over = true
        return
    end
    local array = {part = "field", tag = entries.tag, type = "text", size = entries.size}
    local arrayEnd = self.position + entries.size
    local entriesEnd = self.position
    if self.form == "binary" then
        if #self.bytes < arrayEnd then
            self:cutShort({field = array}, #self.bytes - self.position, entries.size)
            return
        end
        self.position = arrayEnd
    end
    local count = self.values[entries.count]
    local room = entries.size
    local written = 0
    while written < count and room ~= 0 and not self.over do
        local entry = {part = "field", tag = entries.tag, type = "text", size = room}
        local place = {field = entry, indexes = {written}}
        if self.form == "binary" then
            local at = arrayEnd - room
            local zero = find(self.bytes, "\0", at)
            if zero and zero < arrayEnd then
                self:keep(place, at, zero - at)
                entriesEnd = zero + 1
                room = arrayEnd - entriesEnd
            else
                self:tell("entry-not-ended", place, at, room, "a zero byte behind the entry", "none")
                self:keep(place, at, room)
                entriesEnd = arrayEnd
                room = 0
            end
        else
            local characters = cut(self:takeText(place) or "", 0, room - 1)
            room = room - (find(characters, "\0", 0) or #characters) - 1
        end
        written = written + 1
    end
    if not self.over and self:expectAtMost(entries.count, written, true) and self.form == "binary" then
        self:noteUnused(entriesEnd, arrayEnd, {field = array})
    end
end

function Reader:block(block)
    if not self:expectAtMost(block.length, block.bound, true) then
        return
    end
    local size = self.values[block.length]
    local place = {field = {part = "field", tag = block.tag, type = "block", size = size}}
    if self.form == "xml" then
        local first, last = self:takeElement(place)
        if first then
            if last - first ~= size then
                self:tell("block-length", place, first, last - first, decimal(size) .. " bytes",
                    decimal(last - first))
            end
            self:keep(place, first, last - first)
        end
        return
    end
    local left = #self.bytes - self.position
    if left < size then
        self:breakOff("cut-short", place, #self.bytes, 0, decimal(size) .. " bytes", "the end after " .. left)
        return
    end
    local behind = self.position + size
    if self.form == "text" then
        if byteAt(self.bytes, behind) ~= ":" then
            self:breakOff("block-length", place, behind, 1,
                "':' behind the " .. decimal(size) .. " bytes of the block", self:foundAt(behind))
            return
        end
    end
    self:keep(place, self.position, size)
    self.position = behind + (self.form == "text" and 1 or 0)
end

function Reader:limit(limit)
    self:expectAtMost(limit.tag, limit.bound, false)
end

-- ---- binary

function Reader:cutShort(place, left, size)
    self:breakOff("cut-short", place, #self.bytes, 0, size .. " bytes", "the end after " .. left)
end

function Reader:takeBytes(place)
    local field = place.field
    local position = self.position
    local bytes = cut(self.bytes, position, field.size)
    if #bytes < field.size then
        self:cutShort(place, #bytes, field.size)
        return
    end
    self.position = position + field.size
    if field.type == "text" then
        local length = find(bytes, "\0", 0) or #bytes
        self:keep(place, position, length)
        self:noteUnused(position + length, self.position, place)
        return
    end
    local number = unsignedNumber(bytes, position == 0 and self.little)
    if number > ranges[field.type][2] then
        number = number - 256 ^ field.size
    end
    self:keep(place, position, field.size, number)
end

function Reader:skipUnused(count, place)
    local left = #self.bytes - self.position
    if left < count then
        self:breakOff("cut-short", place, #self.bytes, 0, decimal(count) .. " bytes behind what this field says",
            "the end after " .. left)
        return
    end
    self:noteUnused(self.position, self.position + count, place)
    self.position = self.position + count
end

function Reader:noteUnused(from, to, place)
    local bytes = cut(self.bytes, from, to - from)
    local first = findSet(bytes, "[^\0]", 0)
    if first then
        bytes = bytes:match("^\0*(.-)\0*$")
        self:tell("unused-bytes", place, from + first, #bytes, "zeros where no value is", quote(bytes))
    end
end

-- ---- text and XML

function Reader:takeNumber(place)
    local bytes = self.bytes
    local isText = self.form == "text"
    local first, last = self.position, #bytes
    if not isText then
        first, last = self:takeElement(place)
        if not first then
            return
        end
        first, last = self:takeBlanksOff(place, first, last)
    end
    local sign, digits = cut(bytes, first, last - first):match("^(%-?)(%d*)")
    local stop = first + #sign + #digits
    local isWhole = digits ~= "" and (isText and byteAt(bytes, stop) == ":" or not isText and stop == last)
    local significant = digits:match("^0*(.*)$")
    local number = #significant <= 18 and (tonumber(significant) or 0) -- more do not fit anyway
    if number and sign ~= "" and number ~= 0 then
        number = -number
    end
    local range = ranges[place.field.type]
    if not isWhole or not number or number < range[1] or number > range[2] then
        self:loseNumber(place, first, last, stop, isWhole)
        return
    end
    if digits:sub(1, 1) == "0" and (#digits > 1 or sign ~= "") then
        self:tell("number-layout", place, first, stop - first, decimal(number), quote(sign .. digits))
    end
    self:keep(place, first, stop - first, number)
    if isText then
        self.position = stop + 1
    end
end

function Reader:loseNumber(place, first, last, stop, isWhole)
    local bytes = self.bytes
    if self.form == "text" then
        last = findSet(bytes, "[:\n\0]", first) or #bytes
        if byteAt(bytes, last) ~= ":" then
            local contentEnd = last
            while contentEnd > first and (byteAt(bytes, contentEnd - 1) == "\r" or
                byteAt(bytes, contentEnd - 1) == " ") do
                contentEnd = contentEnd - 1
            end
            if stop >= contentEnd then
                self:breakOff("cut-short", place, contentEnd, 0, "':' behind the number",
                    last == #bytes and "the end" or byteAt(bytes, last) == "\n" and "the end of the line" or
                    "a zero byte")
            else
                self:breakOff("not-a-number", place, stop, 1,
                    stop == first and "a decimal number" or "another digit or ':'", self:foundAt(stop))
            end
            return
        end
    end
    local characters = cut(bytes, first, last - first)
    if isWhole then
        local range = ranges[place.field.type]
        self:tell("out-of-range", place, first, #characters, decimal(range[1]) .. " ... " .. decimal(range[2]),
            quote(characters))
    else
        self:tell("not-a-number", place, stop, characters == "" and 0 or 1, "a decimal number", quote(characters))
    end
    if self.form == "text" then
        self.position = last + 1
    end
    self:lose(place)
end

-- Returns the text, or nil if there is none.
function Reader:takeText(place)
    local first, last = self.position, nil
    if self.form == "xml" then
        first, last = self:takeElement(place)
    else
        last = self:findDelimiter(place)
    end
    if not last then
        return nil
    end
    local characters = cut(self.bytes, first, last - first)
    local size = place.field.size
    local zero = find(characters, "\0", 0)
    if zero then
        self:tell("zero-in-text", place, first + zero, 1, "characters other than the zero byte", "a zero byte")
    end
    if #characters >= size then
        local room = size - 1
        self:tell("too-long", place, first + room, #characters - room, "at most " .. room .. " characters",
            tostring(#characters))
    end
    self:keep(place, first, last - first)
    if self.form == "text" then
        self.position = last + 1
    end
    return characters
end

-- The ':' behind a text, which may hold ends of lines. Behind the last of them there must not be the number of the
-- next record.
function Reader:findDelimiter(place)
    local rest = cut(self.bytes, self.position)
    local length = find(rest, ":", 0)
    local text = length and cut(rest, 0, length) or rest
    local lineEnd = find(text, "\n", 0)
    local lastLine = lineEnd and findLast(text, "\n", #text)
    local fits = length and length < place.field.size
    if length and (not lineEnd or (fits and not textSignal(rest, lastLine + 1))) then
        return self.position + length
    end
    local stop = fits and lastLine or lineEnd or #rest
    stop = math.min(stop, find(rest, "\0", 0) or #rest)
    while stop ~= 0 and byteAt(rest, stop - 1) == "\r" do
        stop = stop - 1
    end
    self:breakOff("cut-short", place, self.position + stop, 0, "':' behind the text",
        stop == #rest and "the end" or byteAt(rest, stop) == "\0" and "a zero byte" or "the end of the line")
    return nil
end

-- ---- XML

-- Finds an element as the library does: up to the next zero, white space of the layout taken off. Returns the
-- begin and end of its content, and the end of the element; nothing if there is none.
local function findElement(bytes, from, tag, closingTag)
    local limit = find(bytes, "\0", from) or #bytes
    local opening = "<" .. tag .. ">"
    local open = find(bytes, opening, from)
    if not open or open + #opening > limit then
        return nil
    end
    local first = open + #opening
    local closing = "</" .. closingTag .. ">"
    local last = find(bytes, closing, first)
    if not last or last + #closing > limit then
        return nil
    end
    local behind = last + #closing
    local content = cut(bytes, first, last - first)
    if startsWith(content, "\n\t  ", 0) and content:sub(-2) == "\n\t" then
        return first + 4, last - 2, behind
    end
    local blanks = #content:match("^[ \t-\r]*")
    return first + blanks, last - (blanks < #content and #content:match("[ \t-\r]*$") or 0), behind
end

-- Where the value of an element begins and ends; nothing if it is not there. The first deviation from the writers'
-- layout is noted; from then on every element is looked up by its name.
function Reader:takeElement(place)
    if not self.inLayout then
        return self:lookUpElement(place)
    end
    local field = place.field
    local name = elementName(field.tag, place.indexes)
    local open = (field.bareOpening and "<" or "\t<") .. name .. (field.bareOpening and ">\n\t   " or ">\n\t  ")
    local close = "\n\t</" .. (field.closing or name) .. ">\n"
    if startsWith(self.bytes, open, self.position) then
        local first = self.position + #open
        local last = find(self.bytes, close, first)
        if last and not find(cut(self.bytes, first, last - first), "\0", 0) then
            self.position = last + #close
            return first, last
        end
    end
    self.layoutEnd = self.position
    -- One that is missing leaves the others in their layout.
    local first, last = self:lookUpElement(place)
    self.inLayout = not first
    return first, last
end

function Reader:lookUpElement(place)
    local bytes, field = self.bytes, place.field
    local name = elementName(field.tag, place.indexes)
    local opening = "<" .. name .. ">"
    local from = self.readUpTo[name] or self.layoutEnd
    self.readUpTo[name] = from
    local first, last, behind = findElement(bytes, from, name, name)
    if not first and from == self.layoutEnd and not find(cut(bytes, 0, self.layoutEnd), opening, 0) then
        first, last, behind = findElement(bytes, 0, name, name)
    end
    if not first and field.closing then
        first, last, behind = findElement(bytes, from, name, field.closing)
    end
    if not first then
        local open = find(bytes, opening, from)
        if open then
            self:tell("unclosed-element", place, open, #opening, "</" .. name .. ">", "none behind it")
            self.openings[open] = true
        else
            self:tell("missing-element", place, #bytes, 0, opening, "none")
        end
        self:lose(place)
        return nil
    end
    self:noteLayout(place, self.layoutEnd, 0, cut(bytes, self.layoutEnd, 20))
    self.readUpTo[name] = behind
    if field.bareOpening and last > first and byteAt(bytes, first) == " " then
        first = first + 1 -- that element has one blank more before its value
    end
    self.position = math.max(self.position, behind)
    self.openings[findLast(bytes, opening, first)] = true
    return first, last
end

function Reader:noteLayout(place, position, length, found)
    if not self.layoutNoted then
        self.layoutNoted = true
        self:tell("element-layout", place, position, length, "the writers' layout and order of elements",
            quote(found))
    end
end

-- More blanks than the writers put around a number count for nothing.
function Reader:takeBlanksOff(place, first, last)
    local value = cut(self.bytes, first, last - first)
    local before, content = value:match("^([ \t-\r]*)(.-)[ \t-\r]*$")
    if content ~= "" and #content ~= #value then
        self:noteLayout(place, first, #value, value)
        return first + #before, first + #before + #content
    end
    return first, last
end

-- Elements that no field has taken.
function Reader:lookAtOtherElements()
    local bytes = self.bytes
    local behindLayout = self.inLayout and self.position or self.layoutEnd
    local before = cut(bytes, 0, behindLayout)
    local closings = {} -- where the next one of a name is, or false
    local at = find(bytes, "<", behindLayout)
    while at do
        local stop = findSet(bytes, "[<>]", at + 1)
        if stop and byteAt(bytes, stop) == ">" and byteAt(bytes, at + 1) ~= "/" and stop ~= at + 1 and
            not self.openings[at] then
            local name = cut(bytes, at + 1, stop - at - 1)
            local closing = "</" .. name .. ">"
            local closed = closings[name]
            if closed == nil or closed and closed < stop then
                closed = find(bytes, closing, stop) or false
                closings[name] = closed
            end
            self.position = math.max(self.position, closed and closed + #closing or stop + 1)
            local length = stop + 1 - at
            if self.readUpTo[name] or find(before, "<" .. name .. ">", 0) then
                self:tell("repeated-element", nil, at, length, "one element of this name", "one more")
                self.findings[#self.findings].field = name
            else
                self:tell("unknown-element", nil, at, length, "elements of this signal",
                    quote(cut(bytes, at, length)))
            end
        end
        at = find(bytes, "<", at + 1)
    end
end

-- ---- the records of a packet

-- A rendering that is one record.
local function readWhole(bytes, form, signal, little)
    if not signal then
        local finding
        if form == "text" then
            local digits = bytes:match("^%d*")
            finding = {"unknown-signal", 0, #digits, "the number of a signal", quote(digits)}
        elseif form == "xml" then
            local opening = "<" .. schema.number .. ">"
            local tag = find(bytes, opening, 0)
            local at = tag and findSet(bytes, "[^ \t\r\n]", tag + #opening) or not tag and find(bytes, "<", 0)
            at = at or #bytes
            finding = {"unknown-signal", at, 1, opening .. " with the number of a signal",
                tag and quote(cut(bytes, at, 12)) or "no such element"}
        else
            finding = {"unknown-record", 0, math.min(#bytes, 4), "a signal in any form", quote(cut(bytes, 0, 20))}
        end
        return {
            fields = {},
            findings = {{code = finding[1], position = finding[2], length = finding[3], expected = finding[4],
                found = finding[5]}},
            values = {},
            rest = 0
        }
    end
    local record = read(bytes, form, signal, little)
    if record.over then
        record.rest = record.stop
    else
        local extra = form == "binary" and (findSet(bytes, "[^\0]", record.stop) or #bytes) or
            behindBlanks(bytes, record.stop)
        if extra < #bytes then
            record.rest = extra
            record:tell("extra-input", nil, extra, #bytes - extra, "nothing behind the last field",
                quote(cut(bytes, extra)))
        end
    end
    return record
end

-- Reads what stands first in some bytes. Returns the record, and where the next one begins, or their end.
local function readFirst(bytes)
    local form, signal, little = recognise(bytes)
    local next = #bytes
    local length = #bytes
    if form == "xml" then
        local opening = "<" .. schema.number .. ">"
        local first = find(bytes, opening, 0)
        local second = first and find(bytes, opening, first + 1)
        if second then
            next = byteAt(bytes, second - 1) == "\t" and second - 1 or second
        end
        length = next
        form, signal = recognise(cut(bytes, 0, length))
        form = "xml"
        -- Blanks between this document and the next are nobody's.
        while length > 0 and isBlank(byteAt(bytes, length - 1)) and bytes:sub(length - 1, length) ~= ">\n" do
            length = length - 1
        end
    elseif signal then
        local isBinary = form == "binary"
        local trial = read(bytes, form, signal, little)
        local behind = isBinary and behindZeros(bytes, trial.stop) or behindBlanks(bytes, trial.stop)
        if not trial.over and behind < #bytes and
            (isBinary and binarySignal(bytes, behind) or not isBinary and textSignal(bytes, behind)) then
            next = behind
            length = trial.stop
        elseif isBinary and (trial.over or behind < #bytes) then
            next = nextBinary(bytes, 4)
            length = next
        end
    end
    local record = readWhole(cut(bytes, 0, length), form, signal, little)
    record.form = form
    record.signal = signal
    record.little = little
    record.length = length
    return record, next
end

local function readPacket(bytes)
    local records = {}
    local at = 0
    repeat
        local record, next = readFirst(cut(bytes, at))
        record.begin = at
        table.insert(records, record)
        at = at + next
    until at >= #bytes
    return records
end

-- ---- what Wireshark shows

local protocol = Proto("bci", "Board control interface")

local signalNames = {}
for number, signal in pairs(schema.signals) do
    signal.number = number
    signalNames[number] = signal.name
end

local own = {
    form = ProtoField.string("bci.form", "Form"),
    firstWord = ProtoField.string("bci.firstWord", "Byte order of the first word"),
    name = ProtoField.string("bci.name", "Signal"),
    class = ProtoField.string("bci.class", "Class"),
    damage = ProtoField.string("bci.damage", "Damage"),
    note = ProtoField.string("bci.note", "Note"),
    field = ProtoField.string("bci.finding.field", "Field"),
    expected = ProtoField.string("bci.finding.expected", "Expected"),
    found = ProtoField.string("bci.finding.found", "Found"),
    rest = ProtoField.bytes("bci.rest", "Not read"),
    responseIn = ProtoField.framenum("bci.response_in", "Response in", base.NONE, frametype.RESPONSE),
    responseTo = ProtoField.framenum("bci.response_to", "Response to", base.NONE, frametype.REQUEST),
    responseTime = ProtoField.relative_time("bci.response_time", "Response time")
}

local filters = {}
local allFields = {}
for _, field in pairs(own) do
    table.insert(allFields, field)
end
for tag, type in pairs(schema.filters) do
    assert(not own[tag], tag)
    local make = ProtoField[type]
    local label = tag:gsub("_text$", "")
    if type == "string" or type == "bytes" then
        filters[tag] = make("bci." .. tag, label)
    else
        filters[tag] = make("bci." .. tag, label, base.DEC, tag == schema.number and signalNames or nil)
    end
    table.insert(allFields, filters[tag])
end
protocol.fields = allFields

local experts = {}
local allExperts = {}
for code, info in pairs(schema.codes) do
    local isDamage = info.severity == "damage"
    experts[code] = ProtoExpert.new("bci.expert." .. code:gsub("-", "_"), info.title,
        isDamage and expert.group.MALFORMED or expert.group.PROTOCOL,
        isDamage and expert.severity.ERROR or expert.severity.NOTE)
    table.insert(allExperts, experts[code])
end
protocol.experts = allExperts

-- Requests and their responses, by the reference of the client, and by who sends to whom where that is known.
local waiting, exchanges

function protocol.init()
    waiting = {}
    exchanges = {}
end

local function noteExchange(record, index, pinfo)
    local reference = record.values[schema.references[1]]
    local signal = record.signal
    if not signal or not reference then
        return
    end
    local here, there = tostring(pinfo.src), tostring(pinfo.dst)
    if signal.answers then
        local key = table.concat({signal.answers, decimal(reference), there, here}, " ")
        local exchange = waiting[key]
        if exchange then
            waiting[key] = nil
            exchange.response = pinfo.number
            exchange.time = pinfo.rel_ts - exchange.begin
            exchanges[pinfo.number .. "." .. index] = exchange
        end
    else
        local exchange = {request = pinfo.number, begin = pinfo.rel_ts}
        waiting[table.concat({signal.number, decimal(reference), here, there}, " ")] = exchange
        exchanges[pinfo.number .. "." .. index] = exchange
    end
end

local function showExchange(tree, record, index, pinfo)
    local exchange = exchanges[pinfo.number .. "." .. index]
    if not exchange or not exchange.response then
        return
    end
    if record.signal.answers then
        tree:add(own.responseTo, exchange.request):set_generated()
        local seconds = math.floor(exchange.time)
        local nanoseconds = math.floor((exchange.time - seconds) * 1e9 + 0.5)
        tree:add(own.responseTime, NSTime.new(seconds, nanoseconds)):set_generated()
    else
        tree:add(own.responseIn, exchange.response):set_generated()
    end
end

-- The tree of a list element, which comes with its first field.
local function treeOf(group, root, range)
    if not group then
        return root
    end
    if not group.tree then
        local outer = treeOf(group.outer, root, range)
        group.tree = outer:add(range(group.first, group.last - group.first), group.label)
    end
    return group.tree
end

local function showField(tree, range, field, bytes)
    local name = filterName(field.field)
    local where = range(field.position, field.length)
    local item, value
    if field.number then
        item = tree:add(filters[name], where, field.number)
        value = decimal(field.number)
    elseif field.field.type == "block" then
        item = tree:add(filters[name], where)
    else
        item = tree:add_packet_field(filters[name], where, ENC_UTF_8)
        value = escaped(cut(bytes, field.position, field.length))
    end
    if name ~= field.name and value then
        item:set_text(field.name .. ": " .. value)
    end
end

local function showFinding(tree, range, finding)
    local info = schema.codes[finding.code]
    local where = range(finding.position, finding.length)
    local text = "expected " .. finding.expected .. ", found " .. finding.found
    local name = finding.field and escaped(finding.field)
    if name then
        text = name .. ": " .. text
    end
    local item = tree:add(own[info.severity], where, finding.code)
    item:append_text(" (" .. text .. ")")
    item:add_proto_expert_info(experts[finding.code], text)
    if name then
        item:add(own.field, where, name)
    end
    item:add(own.expected, where, finding.expected)
    item:add(own.found, where, finding.found)
end

local function summaryOf(record)
    local signal = record.signal
    local words = {signal and signal.name or "no signal"}
    for _, tag in ipairs(schema.references) do
        if record.values[tag] then
            table.insert(words, tag .. "=" .. decimal(record.values[tag]))
        end
    end
    for _, finding in ipairs(record.findings) do
        if schema.codes[finding.code].severity == "damage" then
            table.insert(words, "[" .. finding.code .. "]")
        end
    end
    return table.concat(words, " ")
end

function protocol.dissector(tvb, pinfo, root)
    local bytes = tvb:len() > 0 and tvb:raw() or ""
    local summaries = {}
    for index, record in ipairs(readPacket(bytes)) do
        -- Its bytes, by positions that count from its beginning.
        local function range(from, length)
            return tvb:range(record.begin + from, math.min(length, record.length - from))
        end
        local tree = root:add(protocol, range(0, record.length))
        if record.signal then
            tree:append_text(", " .. record.signal.name)
            tree:add(own.name, record.signal.name):set_generated()
            tree:add(own.class, record.signal.class):set_generated()
        end
        if record.form then
            tree:append_text(", " .. record.form)
            tree:add(own.form, record.form):set_generated()
        end
        if record.form == "binary" then
            tree:add(own.firstWord, record.little and "little" or "big"):set_generated()
        end
        for _, field in ipairs(record.fields) do
            showField(treeOf(field.group, tree, range), range, field, record.bytes)
        end
        for _, finding in ipairs(record.findings) do
            showFinding(tree, range, finding)
        end
        if record.rest and record.rest < record.length then
            tree:add(own.rest, range(record.rest, record.length - record.rest))
        end
        if not pinfo.visited then
            noteExchange(record, index, pinfo)
        end
        showExchange(tree, record, index, pinfo)
        table.insert(summaries, summaryOf(record))
    end
    pinfo.cols.protocol = "BCI"
    pinfo.cols.info = table.concat(summaries, " | ")
end

DissectorTable.get("wtap_encap"):add((wtap_encaps or wtap).USER0, protocol)
DissectorTable.get("udp.port"):add_for_decode_as(protocol)
