#!/usr/bin/env python3
# Plants one fault at a time in the corpus programs (a closing END, NEXT, REPEAT or END CASE
# line deleted, a GOSUB/GOTO target renamed, a label defined again) and counts how many
# brix-check reports; the label faults must be reported at their line.
# Usage: check-planted.py BRIX_CHECK [RUN] [COUNT]
import os, random, re, subprocess, sys, tempfile
rng = random.Random(int(sys.argv[2]) if len(sys.argv) > 2 else 1)
exe = sys.argv[1]
files = []
for d in ('scarletdme', 'tcl-utilities'):
    base = os.path.join(os.path.dirname(os.path.abspath(__file__)), '..', '..', 'shared', 'corpus', d)
    for n in sorted(os.listdir(base)):
        files.append(os.path.join(base, n))
closer = re.compile(rb'^\s*(END|NEXT\b.*|REPEAT|END CASE)\s*(;\s*\*.*)?$', re.I)
label = re.compile(rb'^([A-Za-z][A-Za-z0-9.$_]*:|[0-9]+:?)(\s|$)')
gosub = re.compile(rb'\b(GOSUB|GOTO|GO TO)\s+([A-Za-z0-9.$_]+)', re.I)
kinds = {'closer': [0, 0], 'rename': [0, 0], 'dup': [0, 0]}
tmp = tempfile.mkdtemp()
def run(lines):
    p = os.path.join(tmp, 'P')
    open(p, 'wb').write(b'\n'.join(lines))
    r = subprocess.run([exe, p], capture_output=True)
    return r.stdout.decode('utf-8', 'replace').splitlines()
misses = []
total = int(sys.argv[3]) if len(sys.argv) > 3 else 600
while sum(v[0] for v in kinds.values()) < total:
    f = rng.choice(files)
    lines = open(f, 'rb').read().split(b'\n')
    kind = rng.choice(list(kinds))
    if kind == 'closer':
        code = [k for k, l in enumerate(lines) if l.strip() and not l.lstrip().startswith((b'*', b'!'))]
        lastcode = code[-1] if code else -1
        cand = [i for i, l in enumerate(lines) if closer.match(l) and i != lastcode]
        if not cand: continue
        i = rng.choice(cand)
        new = lines[:i] + lines[i+1:]
        out = run(new)
        ok = len(out) > 0
    elif kind == 'rename':
        cand = [i for i, l in enumerate(lines) if gosub.search(l) and not l.lstrip().startswith((b'*', b'!'))]
        if not cand: continue
        i = rng.choice(cand)
        m = gosub.search(lines[i])
        new = list(lines)
        suffix = b'.77' if m.group(2)[:1].isdigit() else b'ZZQ'
        new[i] = lines[i][:m.start(2)] + m.group(2) + suffix + lines[i][m.end(2):]
        out = run(new)
        ok = any(o.startswith('%d:' % (i + 1)) for o in out)
    else:
        cand = [i for i, l in enumerate(lines) if label.match(l)]
        if not cand: continue
        i = rng.choice(cand)
        j = rng.randrange(len(lines) + 1)
        lab = label.match(lines[i]).group(1)
        new = lines[:j] + [lab] + lines[j:]
        orig = i + 1 if i >= j else i
        right = max(orig, j) + 1
        out = run(new)
        ok = any(o.startswith('%d:' % right) for o in out)
    kinds[kind][0] += 1
    kinds[kind][1] += ok
    if not ok: misses.append((kind, os.path.basename(f), i + 1, lines[i].strip()[:30]))
for k, (n, found) in kinds.items():
    print(k, n, found, '%.1f%%' % (100.0 * found / n))
n = sum(v[0] for v in kinds.values()); found = sum(v[1] for v in kinds.values())
print('all', n, found, '%.1f%%' % (100.0 * found / n))
open(os.path.join(tmp, 'misses.txt'), 'w').write('\n'.join(map(str, misses)))
