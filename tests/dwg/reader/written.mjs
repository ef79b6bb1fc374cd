// What `quoin` writes into DWG files, as an independent reader sees it: runs commands one after the
// other, each on the last one's drawing, and compares the drawings.
// Usage: node written.mjs MODULES QUOIN CHANGE_DWG PLAN FOLDER
// Fails unless each finds what it was to change, and nothing else.
import { execFileSync } from 'node:child_process';
import path from 'node:path';
import { reader } from './drawing.mjs';

const [modules, quoin, changeDwg, plan, folder] = process.argv.slice(2);
const list = await reader(modules);
const kLayer = '新墙体';
const kText = '墙体 þ';  // GBK lacks the last letter, Western code pages the first ones
let file = plan, before = list(plan);

const keys = (map, filter) => [...map.keys()].filter(filter);
const type = (drawing, handle) => (drawing.objects.get(handle) ?? '?').split(' ')[0];
const types = (drawing, handles) => handles.map(handle => type(drawing, handle)).sort().join(' ');
const lines = drawing => [...drawing.document.entities].filter(entity => entity.constructor.name === 'Line');
// Up to R2004 what the code page lacks is escaped; the reader leaves it so.
const unescaped = text => text.replace(/\\U\+([0-9A-F]{4})/g, (_, digits) => String.fromCharCode(parseInt(digits, 16)));
const ends = line => [line.startPoint, line.endPoint].map(point => [point.x, point.y, point.z]);
const onLayer = drawing => lines(drawing).filter(line => unescaped(line.layer.name) === kLayer).map(line => ends(line).sort().join(' ')).sort();

function fail(step, message) {
  console.log(`  ${step}: ${message}`);
  process.exitCode = 1;
}

/** Runs a step; `wanted` has the types of what is added, erased and changed. */
function step(name, run, wanted) {
  const out = path.join(folder, `${name}.dwg`);
  const printed = run(file, out).toString();
  const after = list(out);
  const added = keys(after.records, handle => !before.records.has(handle));
  const erased = keys(before.records, handle => !after.records.has(handle));
  const otherBytes = keys(after.records, handle => before.records.has(handle) && before.records.get(handle) !== after.records.get(handle));
  // What belongs to the file as a whole has no record.
  const changed = keys(after.objects, handle => after.records.has(handle) && before.objects.has(handle) && before.objects.get(handle) !== after.objects.get(handle));
  // Neighbours in the chain of R14 and R2000 know new ones; the object model does not tell.
  const neighbours = otherBytes.filter(handle => !changed.includes(handle));
  const most = after.version <= 'AC1015' ? 2 : 0;
  const found = { added: types(after, added), erased: types(before, erased), changed: types(after, changed) };
  for (const [what, list] of Object.entries(found)) {
    if (wanted && list !== wanted[what]) fail(name, `${what}: ${list || '-'}, and not ${wanted[what] || '-'}`);
  }
  if (wanted && neighbours.length > most) fail(name, `other bytes: ${neighbours.map(handle => handle.toString(16))}`);
  const former = before;
  before = after;
  file = out;
  return { former, after, changed, added, erased, otherBytes, printed };
}

const command = (...words) => (from, to) => execFileSync(quoin, [words[0], from, ...words.slice(1), '-o', to]);
const draw = (from, to) => command('draw', '--from', from, '--to', to, '--layer', kLayer);
function expectLines(name, wanted) {
  const found = onLayer(before);
  if (found.join('; ') !== wanted.map(line => line.sort().join(' ')).sort().join('; ')) fail(name, `lines: ${found.join('; ')}`);
}

step('draw on a new layer', draw('0,-1000', '600,-1000'), { added: 'Layer Line', erased: '', changed: 'BlockRecord LayersTable' });
step('draw', draw('600,-1000', '800,-1000'), { added: 'Line', erased: '', changed: 'BlockRecord' });
step('draw again', draw('800,-1000', '1000,-1000'), { added: 'Line', erased: '', changed: 'BlockRecord' });
step('merge', command('merge', '--layer', kLayer), { added: '', erased: 'Line Line', changed: 'BlockRecord Line' });
expectLines('merge', [['0,-1000,0', '1000,-1000,0']]);
step('break', draw('500,-1000', '500,-500'), { added: 'Line Line', erased: '', changed: 'BlockRecord Line' });
expectLines('break', [['0,-1000,0', '500,-1000,0'], ['500,-1000,0', '1000,-1000,0'], ['500,-1000,0', '500,-500,0']]);

// The first text of each kind.
const kinds = ['MText', 'TextEntity'].filter(kind => [...before.document.entities].some(entity => entity.constructor.name === kind));
const texts = step('texts', (from, to) => execFileSync(changeDwg, [from, to, kText]), { added: '', erased: '', changed: kinds.join(' ') });
for (const handle of texts.changed) {
  const text = texts.after.document._cadObjects.get(handle)?.value;
  if (unescaped(text ?? '') !== kText) fail('texts', `${handle.toString(16)}: ${text}`);
}

const scaled = step('rescale', command('rescale', '--drawing-factor', '2', '--leave-behind'));
if (scaled.added.length + scaled.erased.length > 0) fail('rescale', 'records are new or gone');
const closed = ['Solid3D', 'Region', 'Mesh', 'Material', 'XRecord', 'CadDictionary'];
for (const handle of scaled.otherBytes) {
  if (closed.includes(type(scaled.after, handle))) fail('rescale', `${type(scaled.after, handle)} ${handle.toString(16)}`);
}
const old = new Map(lines(scaled.former).map(line => [line.handle, ends(line).flat()]));
for (const line of lines(scaled.after)) {
  if (ends(line).flat().some((number, i) => number !== 2 * old.get(line.handle)[i])) fail('rescale', `line ${line.handle.toString(16)}`);
}
console.log(`${path.basename(plan)}: ${process.exitCode ? 'other changes than were asked for' : `7 runs changed what they were to, ${scaled.otherBytes.length} records scaled`}`);
