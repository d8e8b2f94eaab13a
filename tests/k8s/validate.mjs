// Checks every document of a manifest against the Kubernetes API schemas
// that kubernetes-models carries; exits non-zero naming the first fault.
import { readFileSync } from "node:fs";
import { parseAllDocuments } from "yaml";
import { ConfigMap, Secret, Service } from "kubernetes-models/v1";
import { Deployment } from "kubernetes-models/apps/v1";

const models = { "v1/ConfigMap": ConfigMap, "v1/Secret": Secret, "v1/Service": Service,
                 "apps/v1/Deployment": Deployment };
const file = process.argv[2];
const kinds = [];
for (const document of parseAllDocuments(readFileSync(file, "utf8"))) {
  if (document.errors.length) throw new Error(`${file}: ${document.errors[0].message}`);
  const object = document.toJS();
  const model = models[`${object.apiVersion}/${object.kind}`];
  if (!model) throw new Error(`${file}: unexpected ${object.apiVersion} ${object.kind}`);
  new model(object).validate();
  kinds.push(object.kind);
  // The validator itself must refuse a broken object, or it proves nothing.
  if (object.kind === "Deployment") {
    let refused = false;
    try { new model({ ...object, spec: { ...object.spec, replicas: "one" } }).validate(); }
    catch { refused = true; }
    if (!refused) throw new Error("the schema check accepted replicas: \"one\"");
  }
}
console.log(kinds.join(" "));
