// Compares two DWG files as an independent reader sees them: every record's bytes by its own
// container, every object's fields by its own object model.
// Usage: node compare.mjs MODULES BEFORE AFTER CHANGED ADDED   (MODULES: the folder node_modules)
// Fails unless the record CHANGED (a handle in hexadecimal) alone differs, and ADDED alone is new.
import path from 'node:path';
import { reader } from './drawing.mjs';

const [modules, before, after, changed, added] = process.argv.slice(2);
const list = await reader(modules);

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
