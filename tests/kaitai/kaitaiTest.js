// kaitaiTest.js DESCRIPTION RECORDS: compiles a description, which comes as JSON, and compares what the reader
// made of it reads of each record, {"hex": ..., "row": ...} on a line, with the record's row.
"use strict";

const fs = require("fs");
const path = require("path");
const { createRequire } = require("module");

const installed = createRequire(path.join(process.cwd(), "package.json")); // where npm has put the packages
const compiler = installed("kaitai-struct-compiler");
const runtime = installed("kaitai-struct");

function fail(text) {
    console.error(text);
    process.exit(1);
}

function upperCamel(name) {
    return name.replace(/(^|_)(.)/g, (match, before, letter) => letter.toUpperCase());
}

function lowerCamel(name) {
    return name.replace(/_(.)/g, (match, letter) => letter.toUpperCase());
}

// The names that fields have elsewhere, by the names of the reader's classes and properties.
function originalNames(types, names = new Map()) {
    for (const [name, type] of Object.entries(types ?? {})) {
        for (const field of type.seq) {
            if (field["-orig-id"] !== undefined) {
                names.set(`${upperCamel(name)}.${lowerCamel(field.id)}`, field["-orig-id"]);
            }
        }
        originalNames(type.types, names);
    }
    return names;
}

function expectZeros(name, bytes) {
    if (bytes.some(byte => byte !== 0)) {
        fail(`what is unused of ${name} is not zero`);
    }
}

// All values that have names, as rows hold them.
function collect(node, indexes, names, values) {
    const keep = (property, [first, second], value) => {
        const key = `${node.constructor.name}.${property}`;
        const name = names.get(key) ?? fail(`${key} has no other name`);
        values[name.replace(/_i_j$/, `_${first}_${second}`).replace(/_i$/, `_${first}`)
            .replace(/\[i\]$/, `[${first}]`)] = value;
    };
    const take = (property, value, own) => {
        switch (value.constructor.name) {
        case "PaddedText":
            expectZeros(property, value.padding);
            keep(property, own, value);
            break;
        case "PackedTexts":
            expectZeros(property, value.unused);
            (value.entries ?? []).forEach((entry, i) => keep(property, [i], entry));
            break;
        case "Number":
            keep(property, own, value);
            break;
        case "Uint8Array":
            if (property.startsWith("unused")) {
                expectZeros(property, value);
            } else {
                keep(property, own, Buffer.from(value).toString("hex"));
            }
            break;
        default:
            collect(value, own, names, values);
        }
    };
    for (const [property, value] of Object.entries(node)) {
        if (property.startsWith("_")) {
            continue;
        }
        if (Array.isArray(value)) {
            value.forEach((element, i) => take(property, element, [...indexes, i]));
        } else {
            take(property, value, indexes);
        }
    }
}

// Rows hold texts that are no UTF-8 as hex digits, like blocks.
function isSame(value, name, row) {
    if (name in row.numbers) {
        return value === row.numbers[name];
    }
    if (name in row.texts) {
        return value.text === row.texts[name] && Buffer.from(value.bytes).toString() === row.texts[name];
    }
    return (value.bytes === undefined ? value : Buffer.from(value.bytes).toString("hex")) === row.bytes[name];
}

async function main() {
    const description = JSON.parse(fs.readFileSync(process.argv[2]));
    for (const language of ["javascript", "python"]) {
        const files = await compiler.compile(language, description, null, false);
        for (const [name, source] of Object.entries(files)) {
            fs.writeFileSync(name, source);
        }
    }
    const { Bci } = installed("./Bci.js");
    const names = originalNames(description.types);
    const lines = fs.readFileSync(process.argv[3], "utf8").trim().split("\n");
    const classes = new Set();
    for (const line of lines) {
        const { hex, row } = JSON.parse(line);
        const stream = new runtime.KaitaiStream(new Uint8Array(Buffer.from(hex, "hex")).buffer);
        const signal = new Bci(stream);
        const values = { [description.instances.sig_no["-orig-id"]]: signal.sigNo };
        collect(signal.body, [], names, values);
        const wanted = { ...row.numbers, ...row.texts, ...row.bytes };
        if (Object.keys(values).sort().join() !== Object.keys(wanted).sort().join()) {
            fail(`${row.name}, ${hex}: fields ${Object.keys(values)}, not ${Object.keys(wanted)}`);
        }
        for (const name of Object.keys(values)) {
            if (!isSame(values[name], name, row)) {
                fail(`${row.name}, ${hex}: ${name} is ${values[name]}, not ${wanted[name]}`);
            }
        }
        if (Bci.Signal[signal.signal] !== row.name || signal.isLittle !== (row.firstWord === "little")) {
            fail(`${row.name}, ${hex}: read as ${Bci.Signal[signal.signal]}`);
        }
        if (!stream.isEof()) {
            fail(`${row.name}, ${hex}: read up to ${stream.pos}`);
        }
        classes.add(row.class);
    }
    console.log(`${lines.length} records of ${classes.size} classes`);
}

main().catch(error => fail(error.stack ?? error));
