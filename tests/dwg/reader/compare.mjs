// Compares two DWG files as an independent reader sees them: every record's bytes by its own
// container, every object's fields by its own object model.
// Usage: node compare.mjs MODULES BEFORE AFTER CHANGED ADDED   (MODULES: the folder node_modules)
// Fails unless the record CHANGED (a handle in hexadecimal) alone differs, and ADDED alone is new.
import crypto from 'node:crypto';
import fs from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

const [modules, before, after, changed, added] = process.argv.slice(2);
const dist = path.resolve(modules, '@node-projects/acad-ts/dist');
const load = file => import(pathToFileURL(path.join(dist, file)));
await load('index.js');
const { DwgReader } = await load('IO/DWG/DwgReader.js');

const digest = bytes => crypto.createHash('sha1').update(bytes).digest('hex');

/** A value as text; objects that have a handle are named by it, so that no way is endless. */
function text(value, depth) {
  if (value === null || typeof value !== 'object') return String(value);
  if (typeof value.handle === 'number' && depth > 0) return `@${value.handle}`;
  if (depth > 4) return '...';
  if (value instanceof Map) return text([...value.entries()], depth);
  if (ArrayBuffer.isView(value)) return digest(new Uint8Array(value.buffer, value.byteOffset, value.byteLength));
  if (typeof value[Symbol.iterator] === 'function' && !Array.isArray(value)) return text([...value], depth);
  // What leads to the document leads to everything.
  const names = Object.keys(value).filter(name => !/document/i.test(name)).sort();
  return `{${names.map(name => `${name}:${text(value[name], depth + 1)}`).join(',')}}`;
}

/** The bytes of a record from its size on, by the place in the object map. */
function recordBytes(data, place, hasHandleBits) {
  let at = place, size = 0, factor = 1, word;
  do {
    word = data[at] | data[at + 1] << 8;
    at += 2;
    size += (word & 0x7FFF) * factor;
    factor *= 0x8000;
  } while (word & 0x8000);
  if (hasHandleBits) while (data[at++] & 0x80);
  return data.subarray(place, at + size + 2);
}

function list(file) {
  const bytes = fs.readFileSync(file);
  const version = bytes.toString('latin1', 0, 6);
  const buffer = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength);
  const reader = new DwgReader(buffer);
  const document = reader.read();
  const data = version <= 'AC1015' ? new Uint8Array(buffer)
    : new Uint8Array(reader._getSectionBuffer18(reader._fileHeader, 'AcDb:AcDbObjects'));
  const records = new Map();
  for (const [handle, place] of reader._readHandles()) {
    records.set(Number(handle), digest(recordBytes(data, Number(place), version >= 'AC1024')));
  }
  const objects = new Map();
  for (const [handle, object] of document._cadObjects) {
    objects.set(Number(handle), `${object.constructor.name} ${digest(text(object, 0))}`);
  }
  return { version, records, objects };
}

function compare(what, old, fresh, wantedChanges, wantedAdditions) {
  const hex = handles => handles.map(handle => handle.toString(16).toUpperCase()).join(' ');
  const lost = [...old.keys()].filter(handle => !fresh.has(handle));
  const additions = [...fresh.keys()].filter(handle => !old.has(handle));
  const changes = [...old.keys()].filter(handle => fresh.has(handle) && old.get(handle) !== fresh.get(handle));
  const isRight = lost.length === 0 && hex(changes) === wantedChanges && hex(additions) === wantedAdditions;
  console.log(`${what}: ${old.size}, ${lost.length} lost, changed: ${hex(changes) || '-'}, added: ${hex(additions) || '-'}`);
  if (!isRight) process.exitCode = 1;
}

const one = list(before), other = list(after);
console.log(`${path.basename(before)} ${one.version}`);
compare('  records', one.records, other.records, changed, added);
// The new record belongs to no block, so the object model does not come to it.
compare('  objects', one.objects, other.objects, changed, '');
