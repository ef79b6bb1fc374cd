// The peer of the DWG measurements: reads a drawing and, with a fourth argument, writes it again.
// Usage: node dwg_peer.mjs MODULES IN [OUT]; prints how many entities model space has.
import fs from 'node:fs';
import path from 'node:path';
import { pathToFileURL } from 'node:url';

const [modules, input, output] = process.argv.slice(2);
const dist = path.resolve(modules, '@node-projects/acad-ts/dist');
const load = file => import(pathToFileURL(path.join(dist, file)));
await load('index.js');
const { DwgReader } = await load('IO/DWG/DwgReader.js');
const bytes = fs.readFileSync(input);
const buffer = bytes.buffer.slice(bytes.byteOffset, bytes.byteOffset + bytes.byteLength);
const document = new DwgReader(buffer).read();
console.log([...document.entities].length);
if (output !== undefined) {
  const { DwgWriter } = await load('IO/DWG/DwgWriter.js');
  fs.writeFileSync(output, DwgWriter.writeToBuffer(document));
}
