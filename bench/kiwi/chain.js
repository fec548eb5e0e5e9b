// The chain of layout_bench.cpp solved by kiwi.js: N views, each with a leading spacing to the
// previous view (20 to the superview for the first), a width of 10 and a height of at least 10;
// the root's size a weak preference. Prints the full solve and the re-solve after the first width
// changes (kiwi has no constant change: the constraint is removed and added again).
const kiwi = require('kiwi.js');

function chain(n) {
  const solver = new kiwi.Solver();
  const rootX = new kiwi.Variable(), rootW = new kiwi.Variable();
  const cs = [];
  cs.push(new kiwi.Constraint(new kiwi.Expression(rootX), kiwi.Operator.Eq, 0, kiwi.Strength.required));
  cs.push(new kiwi.Constraint(new kiwi.Expression(rootW), kiwi.Operator.Eq, 375, kiwi.Strength.weak));
  let prevX = null, prevW = null, firstWidth = null, firstW = null;
  for (let i = 0; i < n; i++) {
    const x = new kiwi.Variable(), w = new kiwi.Variable(), h = new kiwi.Variable();
    const leading = prevX
        ? new kiwi.Constraint(new kiwi.Expression(x, [-1, prevX], [-1, prevW], -8), kiwi.Operator.Eq, 0)
        : new kiwi.Constraint(new kiwi.Expression(x, [-1, rootX], -20), kiwi.Operator.Eq, 0);
    const width = new kiwi.Constraint(new kiwi.Expression(w, -10), kiwi.Operator.Eq, 0);
    const height = new kiwi.Constraint(new kiwi.Expression(h, -10), kiwi.Operator.Ge, 0);
    cs.push(leading, width, height);
    if (!firstWidth) { firstWidth = width; firstW = w; }
    prevX = x; prevW = w;
  }
  return {solver, cs, firstWidth, firstW};
}

function timeIt(fn, minMs) {
  let runs = 0, total = 0;
  while (total < minMs) {
    const t0 = process.hrtime.bigint();
    fn();
    total += Number(process.hrtime.bigint() - t0) / 1e6;
    runs++;
  }
  return total / runs;
}

for (const n of [10, 100, 1000]) {
  const full = timeIt(() => {
    const c = chain(n);
    for (const k of c.cs) c.solver.addConstraint(k);
    c.solver.updateVariables();
  }, 1000);
  const c = chain(n);
  for (const k of c.cs) c.solver.addConstraint(k);
  c.solver.updateVariables();
  let constant = 10;
  const relayout = timeIt(() => {
    constant = constant === 10 ? 25 : 10;
    c.solver.removeConstraint(c.firstWidth);
    c.firstWidth = new kiwi.Constraint(new kiwi.Expression(c.firstW, -constant), kiwi.Operator.Eq, 0);
    c.solver.addConstraint(c.firstWidth);
    c.solver.updateVariables();
  }, 1000);
  console.log(`kiwi.js N=${n}: full ${(full * 1000).toFixed(1)} us, re-layout ${(relayout * 1000).toFixed(1)} us`);
}
