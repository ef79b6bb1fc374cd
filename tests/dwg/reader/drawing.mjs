// A DWG file as an independent reader sees it: every record's bytes by its own container, every
// object's fields by its own object model.
import crypto from 'node:crypto';
import fs from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

/** The reader of the package in this folder node_modules; use list() of it. */
export async function reader(modules) {
  const dist = path.resolve(modules, '@node-projects/acad-ts/dist');
  const load = file => import(pathToFileURL(path.join(dist, file)));
  await load('index.js');
  const { DwgReader } = await load('IO/DWG/DwgReader.js');
  return file => list(DwgReader, file);
}

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

function list(DwgReader, file) {
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
  return { version, records, objects, document };
}
