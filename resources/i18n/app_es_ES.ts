<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="es_ES" sourcelanguage="en_US">
<context>
    <name>BtListDlg</name>
    <message>
        <source>Bluetooth Devices</source>
        <translation>Dispositivos Bluetooth</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>MAC</source>
        <translation>MAC</translation>
    </message>
    <message>
        <source>RSSI</source>
        <translation>Señal</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Bind</source>
        <translation>Vincular</translation>
    </message>
    <message>
        <source>%1 dBm</source>
        <translation>%1 dBm</translation>
    </message>
    <message>
        <source>Scan failed</source>
        <translation>Error en la búsqueda</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>Scanning... %1 s</source>
        <translation>Buscando... %1 s</translation>
    </message>
    <message>
        <source>No device found</source>
        <translation>No se encontró ningún dispositivo</translation>
    </message>
    <message>
        <source>Choose the printer</source>
        <translation>Elija la impresora</translation>
    </message>
    <message>
        <source>Stop</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>Scan Again</source>
        <translation>Buscar de nuevo</translation>
    </message>
</context>
<context>
    <name>GData</name>
    <message>
        <source>No response from the analysis server.</source>
        <translation>El servidor de análisis no responde.</translation>
    </message>
    <message>
        <source>The analysis server&apos;s answer could not be read.</source>
        <translation>No se pudo leer la respuesta del servidor de análisis.</translation>
    </message>
    <message>
        <source>The mail security setting &quot;%1&quot; is not none, starttls or tls</source>
        <translation>El ajuste de seguridad del correo «%1» no es válido: debe ser none, starttls o tls</translation>
    </message>
    <message>
        <source>There is no report to send</source>
        <translation>No hay ningún informe que enviar</translation>
    </message>
    <message>
        <source>The report %1 cannot be read</source>
        <translation>No se puede leer el informe %1</translation>
    </message>
    <message>
        <source>Vision screening records</source>
        <translation>Registros de cribado visual</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Aprobado</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Remitir</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>Sin resultado</translation>
    </message>
    <message>
        <source>Vision screening of %1: %2</source>
        <translation>Cribado visual de %1: %2</translation>
    </message>
    <message>
        <source>Vision screening report</source>
        <translation>Informe de cribado visual</translation>
    </message>
    <message>
        <source>Name: %1</source>
        <translation>Nombre: %1</translation>
    </message>
    <message>
        <source>Sex: %1</source>
        <translation>Sexo: %1</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Masculino</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Femenino</translation>
    </message>
    <message>
        <source>Birthday: %1</source>
        <translation>Fecha de nacimiento: %1</translation>
    </message>
    <message>
        <source>Test time: %1</source>
        <translation>Fecha y hora del cribado: %1</translation>
    </message>
    <message>
        <source>Right eye (OD): sphere %1, cylinder %2, axis %3</source>
        <translation>Ojo derecho (OD): esfera %1, cilindro %2, eje %3</translation>
    </message>
    <message>
        <source>Left eye (OS): sphere %1, cylinder %2, axis %3</source>
        <translation>Ojo izquierdo (OI): esfera %1, cilindro %2, eje %3</translation>
    </message>
    <message>
        <source>Pupil distance: %1</source>
        <translation>Distancia pupilar: %1</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>Resultado: %1</translation>
    </message>
    <message>
        <source>The recording of the test is attached.</source>
        <translation>Se adjunta la grabación del cribado.</translation>
    </message>
    <message>
        <source>Test message from the vision screener</source>
        <translation>Mensaje de prueba del equipo de cribado visual</translation>
    </message>
    <message>
        <source>This message confirms that the screener can send its reports to this address.</source>
        <translation>Este mensaje confirma que el equipo de cribado puede enviar sus informes a esta dirección.</translation>
    </message>
    <message>
        <source>Open printer failed</source>
        <translation>No se pudo abrir la impresora</translation>
    </message>
    <message>
        <source>Printer init failed</source>
        <translation>Error al iniciar la impresora</translation>
    </message>
    <message>
        <source>Orvella vision screener %1</source>
        <translation>Cribador visual Orvella %1</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>Sexo</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>Fecha de nacimiento</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Hora</translation>
    </message>
    <message>
        <source>OD SPH</source>
        <translation>OD ESF</translation>
    </message>
    <message>
        <source>OD CYL</source>
        <translation>OD CIL</translation>
    </message>
    <message>
        <source>OD AXIS</source>
        <translation>OD EJE</translation>
    </message>
    <message>
        <source>OS SPH</source>
        <translation>OI ESF</translation>
    </message>
    <message>
        <source>OS CYL</source>
        <translation>OI CIL</translation>
    </message>
    <message>
        <source>OS AXIS</source>
        <translation>OI EJE</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>DP</translation>
    </message>
    <message>
        <source>Screening results</source>
        <translation>Resultados del cribado</translation>
    </message>
    <message>
        <source>The export could not be written to the USB drive %1</source>
        <translation>No se pudo escribir la exportación en la memoria USB %1</translation>
    </message>
</context>
<context>
    <name>KeypadDlg</name>
    <message>
        <source>Del</source>
        <translation>Borrar</translation>
    </message>
    <message>
        <source>Enter</source>
        <translation>Intro</translation>
    </message>
    <message>
        <source>Shift</source>
        <translation>Mayús</translation>
    </message>
    <message>
        <source>.?123</source>
        <translation>.?123</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Listo</translation>
    </message>
    <message>
        <source>Space</source>
        <translation>Espacio</translation>
    </message>
    <message>
        <source>abc</source>
        <translation>abc</translation>
    </message>
</context>
<context>
    <name>Mailer</name>
    <message>
        <source>The mail server %1 did not answer within %2 seconds</source>
        <translation>El servidor de correo %1 no respondió en %2 segundos</translation>
    </message>
    <message>
        <source>No mail server is set</source>
        <translation>No se ha configurado ningún servidor de correo</translation>
    </message>
    <message>
        <source>The mail server %1 is not a valid address</source>
        <translation>La dirección del servidor de correo %1 no es válida</translation>
    </message>
    <message>
        <source>The sender address &quot;%1&quot; is not valid</source>
        <translation>La dirección del remitente «%1» no es válida</translation>
    </message>
    <message>
        <source>No recipient address is set</source>
        <translation>No se ha configurado ninguna dirección de destino</translation>
    </message>
    <message>
        <source>The recipient address &quot;%1&quot; is not valid</source>
        <translation>La dirección de destino «%1» no es válida</translation>
    </message>
    <message>
        <source>The attachment %1 is missing</source>
        <translation>No se encuentra el archivo adjunto %1</translation>
    </message>
    <message>
        <source>The attachment %1 cannot be read</source>
        <translation>No se puede leer el archivo adjunto %1</translation>
    </message>
    <message>
        <source>The attachment %1 is empty</source>
        <translation>El archivo adjunto %1 está vacío</translation>
    </message>
    <message>
        <source>The mailer cannot start</source>
        <translation>No se puede iniciar el envío de correo</translation>
    </message>
    <message>
        <source>The mail server %1 cannot be reached</source>
        <translation>No se puede conectar con el servidor de correo %1</translation>
    </message>
    <message>
        <source>The mail server %1 refused the user name or password</source>
        <translation>El servidor de correo %1 rechazó el usuario o la contraseña</translation>
    </message>
    <message>
        <source>The mail server %1 does not offer an encrypted connection</source>
        <translation>El servidor de correo %1 no ofrece una conexión cifrada</translation>
    </message>
    <message>
        <source>The encrypted connection to the mail server %1 failed: %2</source>
        <translation>Error en la conexión cifrada con el servidor de correo %1: %2</translation>
    </message>
    <message>
        <source>The mail server refused the recipient: %1</source>
        <translation>El servidor de correo rechazó el destinatario: %1</translation>
    </message>
    <message>
        <source>The mail server refused mail from %1: %2</source>
        <translation>El servidor de correo rechazó el correo de %1: %2</translation>
    </message>
    <message>
        <source>The mail server %1 refused the login: %2</source>
        <translation>El servidor de correo %1 rechazó el inicio de sesión: %2</translation>
    </message>
    <message>
        <source>The mail server %1 turned the device away: %2</source>
        <translation>El servidor de correo %1 rechazó la conexión del equipo: %2</translation>
    </message>
    <message>
        <source>The mail server refused the message: %1</source>
        <translation>El servidor de correo rechazó el mensaje: %1</translation>
    </message>
    <message>
        <source>Sending the mail to %1 failed: %2</source>
        <translation>Error al enviar el correo a través de %1: %2</translation>
    </message>
</context>
<context>
    <name>MainDialog</name>
    <message>
        <source>Error</source>
        <translation>Error</translation>
    </message>
    <message>
        <source>User Name cannot be empry!</source>
        <translation>El nombre no puede quedar vacío.</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>Network is not ready!</source>
        <translation>La red aún no está lista.</translation>
    </message>
    <message>
        <source>Date is not valid!</source>
        <translation>Fecha no válida</translation>
    </message>
    <message>
        <source>Please enter your name</source>
        <translation>Escriba el nombre</translation>
    </message>
    <message>
        <source>Year-Month-Date</source>
        <translation>Año-Mes-Día</translation>
    </message>
    <message>
        <source>Year</source>
        <translation>Año</translation>
    </message>
    <message>
        <source>Month</source>
        <translation>Mes</translation>
    </message>
    <message>
        <source>Day</source>
        <translation>Día</translation>
    </message>
    <message>
        <source>Power Off</source>
        <translation>¿Apagar el equipo?</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Sí</translation>
    </message>
    <message>
        <source>No</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Version Check Failed!</source>
        <translation>Error al comprobar la versión</translation>
    </message>
    <message>
        <source>No New Version!</source>
        <translation>No hay ninguna versión nueva</translation>
    </message>
    <message>
        <source>System Update</source>
        <translation>¿Actualizar el sistema?</translation>
    </message>
    <message>
        <source>System Update Failed!</source>
        <translation>Error al actualizar el sistema</translation>
    </message>
    <message>
        <source>System Update Success!</source>
        <translation>Sistema actualizado correctamente</translation>
    </message>
    <message>
        <source>Low Battery</source>
        <translation>Batería baja</translation>
    </message>
    <message>
        <source>20% battery remaining</source>
        <translation>Queda un 20% de batería</translation>
    </message>
    <message>
        <source>Camera Open Failed!</source>
        <translation>No se pudo abrir la cámara.</translation>
    </message>
    <message>
        <source>%1 Minutes</source>
        <translation>%1 minutos</translation>
    </message>
    <message>
        <source>Connect to Network</source>
        <translation>Conectar a la red</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Eliminar</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Conectar</translation>
    </message>
    <message>
        <source>Connect Failed!</source>
        <translation>Error al conectar</translation>
    </message>
    <message>
        <source>Delete Failed!</source>
        <translation>Error al eliminar</translation>
    </message>
    <message>
        <source>Connect to the unsafe network?</source>
        <translation>¿Conectar a una red no segura?</translation>
    </message>
    <message>
        <source>Version List File Download Failed!</source>
        <translation>Error al descargar la lista de versiones</translation>
    </message>
    <message>
        <source>Wrong Password!</source>
        <translation>Contraseña incorrecta</translation>
    </message>
    <message>
        <source>AUTO ON</source>
        <translation>AUTO: SÍ</translation>
    </message>
    <message>
        <source>AUTO OFF</source>
        <translation>AUTO: NO</translation>
    </message>
    <message>
        <source>Please move the cross sign to the center</source>
        <translation>Lleve la cruz al centro</translation>
    </message>
    <message>
        <source>Please lower the ambient brightness to below 20</source>
        <translation>Baje el brillo ambiental a menos de 20</translation>
    </message>
    <message>
        <source>Vedio File Open Failed!</source>
        <translation>No se pudo abrir el archivo de vídeo.</translation>
    </message>
    <message>
        <source>Message</source>
        <translation>Mensaje</translation>
    </message>
    <message>
        <source>Data is processing,please wait...</source>
        <translation>Procesando los datos, espere...</translation>
    </message>
    <message>
        <source>Waiting...</source>
        <translation>Esperando...</translation>
    </message>
    <message>
        <source>The pupil image has been sent to your email.</source>
        <translation>La imagen de las pupilas se ha enviado a su correo.</translation>
    </message>
    <message>
        <source>Data processing failed: %1</source>
        <translation>Error al procesar los datos: %1</translation>
    </message>
    <message>
        <source>On</source>
        <translation>Sí</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Please Input Email</source>
        <translation>Escriba una dirección de correo</translation>
    </message>
    <message>
        <source>Invalid E-mail Address</source>
        <translation>Dirección de correo no válida</translation>
    </message>
    <message>
        <source>Mail is Sending, Please wait...</source>
        <translation>Enviando el correo, espere...</translation>
    </message>
    <message>
        <source>Success</source>
        <translation>Éxito</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>Sexo</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>Fecha de nac.</translation>
    </message>
    <message>
        <source>Time</source>
        <translation>Fecha y hora</translation>
    </message>
    <message>
        <source>OD SPH</source>
        <translation>OD ESF</translation>
    </message>
    <message>
        <source>OD CYL</source>
        <translation>OD CIL</translation>
    </message>
    <message>
        <source>OD AXIS</source>
        <translation>OD EJE</translation>
    </message>
    <message>
        <source>OS SPH</source>
        <translation>OI ESF</translation>
    </message>
    <message>
        <source>OS CYL</source>
        <translation>OI CIL</translation>
    </message>
    <message>
        <source>OS AXIS</source>
        <translation>OI EJE</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>DP</translation>
    </message>
    <message>
        <source>Result</source>
        <translation>Resultado</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Masc.</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Fem.</translation>
    </message>
    <message>
        <source>No Record Selected</source>
        <translation>Ningún registro seleccionado</translation>
    </message>
    <message>
        <source>Delete Records</source>
        <translation>¿Eliminar los registros seleccionados?</translation>
    </message>
    <message>
        <source>Open File Error</source>
        <translation>No se pudo abrir el archivo.</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Aprobado</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Remitir</translation>
    </message>
    <message>
        <source>The camera is getting ready, please wait...</source>
        <translation>La cámara se está preparando, espere por favor...</translation>
    </message>
    <message>
        <source>The camera is not ready yet, please try again.</source>
        <translation>La cámara aún no está lista, inténtelo de nuevo.</translation>
    </message>
    <message>
        <source>No report was sent: set the e-mail address on the E-mail Reports page.</source>
        <translation>No se envió ningún informe: configure la dirección de correo en la página de informes por correo.</translation>
    </message>
    <message>
        <source>Unknown</source>
        <translation>Desconocida</translation>
    </message>
    <message>
        <source>%1: %2 to %3</source>
        <translation>%1: de %2 a %3</translation>
    </message>
    <message>
        <source>Value Out of Range</source>
        <translation>Valor fuera de rango</translation>
    </message>
    <message>
        <source>%1 must be a whole number from %2 to %3.</source>
        <translation>%1 debe ser un número entero entre %2 y %3.</translation>
    </message>
    <message>
        <source>None</source>
        <translation>Ninguna</translation>
    </message>
    <message>
        <source>Invalid Device ID</source>
        <translation>ID de dispositivo no válido</translation>
    </message>
    <message>
        <source>A device ID cannot contain &quot;|&quot;.</source>
        <translation>Un ID de dispositivo no puede contener «|».</translation>
    </message>
    <message>
        <source>Factory Reset</source>
        <translation>Restablecer valores de fábrica</translation>
    </message>
    <message>
        <source>All settings return to their factory values and the device restarts. The test history is kept.</source>
        <translation>Todos los ajustes vuelven a sus valores de fábrica y el equipo se reinicia. El historial de pruebas se conserva.</translation>
    </message>
    <message>
        <source>The device restarts now.</source>
        <translation>El equipo se reinicia ahora.</translation>
    </message>
    <message>
        <source>Printed</source>
        <translation>Impreso</translation>
    </message>
    <message>
        <source>No printer is set</source>
        <translation>No hay ninguna impresora configurada</translation>
    </message>
    <message>
        <source>Printer bound: %1</source>
        <translation>Impresora vinculada: %1</translation>
    </message>
    <message>
        <source>Phone setup could not start!</source>
        <translation>¡No se pudo iniciar la configuración desde el móvil!</translation>
    </message>
    <message>
        <source>Stop setup</source>
        <translation>Detener</translation>
    </message>
    <message>
        <source>Phone setup</source>
        <translation>Config. móvil</translation>
    </message>
    <message>
        <source>PIN %1, %2 left</source>
        <translation>PIN %1, quedan %2</translation>
    </message>
    <message>
        <source>Phone setup closed: too many wrong PINs</source>
        <translation>Configuración desde el móvil cerrada: demasiados PIN incorrectos</translation>
    </message>
    <message>
        <source>Phone setup closed: time is up</source>
        <translation>Configuración desde el móvil cerrada: se acabó el tiempo</translation>
    </message>
    <message>
        <source>Network %1 added by provisioning</source>
        <translation>Red %1 añadida desde el móvil</translation>
    </message>
    <message>
        <source>Provisioning could not add network %1</source>
        <translation>No se pudo añadir la red %1 desde el móvil</translation>
    </message>
    <message>
        <source>Network %1 chosen by provisioning</source>
        <translation>Red %1 elegida desde el móvil</translation>
    </message>
    <message>
        <source>Provisioning could not choose network %1</source>
        <translation>No se pudo elegir la red %1 desde el móvil</translation>
    </message>
    <message>
        <source>Network %1 forgotten by provisioning</source>
        <translation>Red %1 olvidada desde el móvil</translation>
    </message>
    <message>
        <source>Provisioning could not forget network %1</source>
        <translation>No se pudo olvidar la red %1 desde el móvil</translation>
    </message>
    <message>
        <source>Also saved on the USB drive in %1</source>
        <translation>También guardado en la memoria USB, en %1</translation>
    </message>
    <message>
        <source>No pupil photo was kept for the test of %1.</source>
        <translation>No se guardó foto de las pupilas de la prueba del %1.</translation>
    </message>
    <message>
        <source>Pupil photo of the test of %1</source>
        <translation>Foto de las pupilas de la prueba del %1</translation>
    </message>
    <message>
        <source>A name cannot contain &quot;,&quot; or &quot;|&quot;.</source>
        <translation>Un nombre no puede contener «,» ni «|».</translation>
    </message>
    <message>
        <source>The history could not be read or written; nothing was deleted.</source>
        <translation>No se pudo leer o escribir el historial; no se eliminó nada.</translation>
    </message>
    <message>
        <source>The settings file %1 cannot be read, so the referral criterion is unknown. Screening is off until the device is serviced.</source>
        <translation>No se puede leer el archivo de ajustes %1, así que se desconoce el criterio de remisión. El cribado queda desactivado hasta que se revise el equipo.</translation>
    </message>
    <message>
        <source>The recording could not be written: the storage may be full. Please record again.</source>
        <translation>No se pudo escribir la grabación: puede que el almacenamiento esté lleno. Vuelva a grabar.</translation>
    </message>
</context>
<context>
    <name>NumKeypadDlg</name>
    <message>
        <source>Del</source>
        <translation>Borrar</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Listo</translation>
    </message>
</context>
<context>
    <name>PageBoot</name>
    <message>
        <source>Connecting to the network...</source>
        <translation>Conectando a la red...</translation>
    </message>
</context>
<context>
    <name>PageCamera</name>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Distance</source>
        <translation>Distancia</translation>
    </message>
    <message>
        <source>Brightness</source>
        <translation>Brillo</translation>
    </message>
    <message>
        <source>Sharpness</source>
        <translation>Nitidez</translation>
    </message>
    <message>
        <source>Pitch</source>
        <translation>Inclinación</translation>
    </message>
    <message>
        <source>AUTO OFF</source>
        <translation>AUTO: NO</translation>
    </message>
</context>
<context>
    <name>PageCountry</name>
    <message>
        <source>Region</source>
        <translation>Región</translation>
    </message>
    <message>
        <source>United States</source>
        <translation>Estados Unidos</translation>
    </message>
    <message>
        <source>India</source>
        <translation>India</translation>
    </message>
    <message>
        <source>China</source>
        <translation>China</translation>
    </message>
    <message>
        <source>Philippines</source>
        <translation>Filipinas</translation>
    </message>
    <message>
        <source>Test videos are analysed by the server of this region, and system updates come from it.</source>
        <translation>Los vídeos de las pruebas los analiza el servidor de esta región, y de él llegan las actualizaciones del sistema.</translation>
    </message>
</context>
<context>
    <name>PageEmail</name>
    <message>
        <source>E-mail Reports</source>
        <translation>Informes por correo</translation>
    </message>
    <message>
        <source>Send a report after each test</source>
        <translation>Enviar un informe tras cada cribado</translation>
    </message>
    <message>
        <source>Off</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Address</source>
        <translation>Dirección</translation>
    </message>
    <message>
        <source>Send Test Mail</source>
        <translation>Enviar correo de prueba</translation>
    </message>
    <message>
        <source>History export also attaches</source>
        <translation>La exportación del historial adjunta también</translation>
    </message>
</context>
<context>
    <name>PageHistory</name>
    <message>
        <source>History</source>
        <translation>Historial</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Search</source>
        <translation>Buscar</translation>
    </message>
    <message>
        <source>Select All</source>
        <translation>Marcar todos</translation>
    </message>
    <message>
        <source>Delete</source>
        <translation>Eliminar</translation>
    </message>
    <message>
        <source>E-mail</source>
        <translation>Enviar correo</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Imprimir</translation>
    </message>
    <message>
        <source>Photo</source>
        <translation>Foto</translation>
    </message>
</context>
<context>
    <name>PageInfoInput</name>
    <message>
        <source>Patient Information</source>
        <translation>Datos del paciente</translation>
    </message>
    <message>
        <source>Name</source>
        <translation>Nombre</translation>
    </message>
    <message>
        <source>Sex</source>
        <translation>Sexo</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Masculino</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Femenino</translation>
    </message>
    <message>
        <source>Birthday</source>
        <translation>Fecha de nacimiento</translation>
    </message>
    <message>
        <source>Type the birthday as year-month-day, e.g. 2019-03-02</source>
        <translation>Escriba la fecha de nacimiento como año-mes-día, p. ej. 2019-03-02</translation>
    </message>
</context>
<context>
    <name>PageLanguage</name>
    <message>
        <source>Language</source>
        <translation>Idioma</translation>
    </message>
</context>
<context>
    <name>PageMachineID</name>
    <message>
        <source>Machine ID</source>
        <translation>ID del equipo</translation>
    </message>
    <message>
        <source>MAC address</source>
        <translation>Dirección MAC</translation>
    </message>
    <message>
        <source>Version</source>
        <translation>Versión</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>Región</translation>
    </message>
    <message>
        <source>Scan to read these details</source>
        <translation>Escanee para leer estos datos</translation>
    </message>
</context>
<context>
    <name>PageNoWifi</name>
    <message>
        <source>No Wi-Fi connection</source>
        <translation>Sin conexión Wi-Fi</translation>
    </message>
    <message>
        <source>Connect the device to a Wi-Fi network to start screening.</source>
        <translation>Conecte el equipo a una red Wi-Fi para empezar el cribado.</translation>
    </message>
    <message>
        <source>Wi-Fi Settings</source>
        <translation>Ajustes de Wi-Fi</translation>
    </message>
</context>
<context>
    <name>PageParam</name>
    <message>
        <source>Parameters</source>
        <translation>Parámetros</translation>
    </message>
    <message>
        <source>Exposure</source>
        <translation>Exposición</translation>
    </message>
    <message>
        <source>Gain</source>
        <translation>Ganancia</translation>
    </message>
    <message>
        <source>Setting 3</source>
        <translation>Ajuste 3</translation>
    </message>
    <message>
        <source>LED loop count</source>
        <translation>Ciclos del LED</translation>
    </message>
    <message>
        <source>Setting 5</source>
        <translation>Ajuste 5</translation>
    </message>
    <message>
        <source>Pitch offset (°)</source>
        <translation>Corrección de inclinación (°)</translation>
    </message>
    <message>
        <source>Distance offset (mm)</source>
        <translation>Corrección de distancia (mm)</translation>
    </message>
</context>
<context>
    <name>PagePrinter</name>
    <message>
        <source>Printer</source>
        <translation>Impresora</translation>
    </message>
    <message>
        <source>Printer type</source>
        <translation>Tipo de impresora</translation>
    </message>
    <message>
        <source>Bluetooth</source>
        <translation>Bluetooth</translation>
    </message>
    <message>
        <source>Cloud</source>
        <translation>En la nube</translation>
    </message>
    <message>
        <source>Bluetooth printer</source>
        <translation>Impresora Bluetooth</translation>
    </message>
    <message>
        <source>Cloud printer ID</source>
        <translation>ID de la impresora en la nube</translation>
    </message>
    <message>
        <source>Scan</source>
        <translation>Buscar</translation>
    </message>
    <message>
        <source>Test Print</source>
        <translation>Imprimir prueba</translation>
    </message>
</context>
<context>
    <name>PageReferral</name>
    <message>
        <source>Referral Criteria</source>
        <translation>Criterios de remisión</translation>
    </message>
    <message>
        <source>Matta/Silbert</source>
        <translation>Matta/Silbert</translation>
    </message>
    <message>
        <source>sensitivity: 98% specificity: 68%</source>
        <translation>sensibilidad: 98% especificidad: 68%</translation>
    </message>
    <message>
        <source>Indication of source: J AAPOS. 2008; 12:490-492</source>
        <translation>Fuente: J AAPOS. 2008; 12:490-492</translation>
    </message>
    <message>
        <source>In regions/countries where these is universal healthcare, you can choose</source>
        <translation>En regiones o países con sanidad universal puede elegir</translation>
    </message>
    <message>
        <source>the &quot;Matta/Silbert&quot;. It may be beneficial to optimise sensitivity, so that</source>
        <translation>«Matta/Silbert». Puede convenir optimizar la sensibilidad para que</translation>
    </message>
    <message>
        <source>more children enter into optometry care and few problems are missed.</source>
        <translation>más niños reciban atención optométrica y se pasen por alto menos problemas.</translation>
    </message>
    <message>
        <source>sensitivity: 73% specificity: 92%</source>
        <translation>sensibilidad: 73% especificidad: 92%</translation>
    </message>
    <message>
        <source>Indication of source: J AAPOS. 2011; 15:551-555</source>
        <translation>Fuente: J AAPOS. 2011; 15:551-555</translation>
    </message>
    <message>
        <source>In regions where resources are scarce, you can choose the &quot;Arthur2&quot;.</source>
        <translation>En regiones con escasos recursos puede elegir «Arthur2».</translation>
    </message>
    <message>
        <source>It may be more cost effective to target high specificity to minimize</source>
        <translation>Puede ser más rentable buscar una especificidad alta para reducir al mínimo</translation>
    </message>
    <message>
        <source>false referrals.</source>
        <translation>las remisiones innecesarias.</translation>
    </message>
    <message>
        <source>sensitivity: 92% specificity: 90%</source>
        <translation>sensibilidad: 92% especificidad: 90%</translation>
    </message>
    <message>
        <source>Indication of source: the criterion publisher&apos;s web site</source>
        <translation>Fuente: sitio web del editor del criterio</translation>
    </message>
    <message>
        <source>Arnold is best at maximizing sensitivity and specificity for the latest AAPOS</source>
        <translation>Arnold es el que mejor maximiza la sensibilidad y la especificidad según los últimos</translation>
    </message>
    <message>
        <source>referral criteria.You can choose “Arnold” for routine check.</source>
        <translation>criterios de remisión de la AAPOS. Para revisiones rutinarias puede elegir «Arnold».</translation>
    </message>
</context>
<context>
    <name>PageResult</name>
    <message>
        <source>Screening Result</source>
        <translation>Resultado del cribado</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Aprobado</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Remitir</translation>
    </message>
    <message>
        <source>SPH</source>
        <translation>ESF</translation>
    </message>
    <message>
        <source>CYL</source>
        <translation>CIL</translation>
    </message>
    <message>
        <source>AXIS</source>
        <translation>EJE</translation>
    </message>
    <message>
        <source>OD (right)</source>
        <translation>OD (der.)</translation>
    </message>
    <message>
        <source>OS (left)</source>
        <translation>OI (izq.)</translation>
    </message>
    <message>
        <source>PD</source>
        <translation>DP</translation>
    </message>
    <message>
        <source>Next Child</source>
        <translation>Siguiente niño</translation>
    </message>
    <message>
        <source>Print</source>
        <translation>Imprimir</translation>
    </message>
</context>
<context>
    <name>PageSetup</name>
    <message>
        <source>Settings</source>
        <translation>Ajustes</translation>
    </message>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Time Zone</source>
        <translation>Zona horaria</translation>
    </message>
    <message>
        <source>Screen and Power</source>
        <translation>Pantalla y energía</translation>
    </message>
    <message>
        <source>Region</source>
        <translation>Región</translation>
    </message>
    <message>
        <source>Referral Criteria</source>
        <translation>Criterios de remisión</translation>
    </message>
    <message>
        <source>Parameters</source>
        <translation>Parámetros</translation>
    </message>
    <message>
        <source>Machine ID</source>
        <translation>ID del equipo</translation>
    </message>
    <message>
        <source>System Update</source>
        <translation>Actualizar el sistema</translation>
    </message>
    <message>
        <source>E-mail Reports</source>
        <translation>Informes por correo</translation>
    </message>
    <message>
        <source>Language</source>
        <translation>Idioma</translation>
    </message>
    <message>
        <source>Printer</source>
        <translation>Impresora</translation>
    </message>
    <message>
        <source>Factory Reset</source>
        <translation>Valores de fábrica</translation>
    </message>
</context>
<context>
    <name>PageSleepTime</name>
    <message>
        <source>Screen and Power</source>
        <translation>Pantalla y energía</translation>
    </message>
    <message>
        <source>Screen off after</source>
        <translation>Apagado de pantalla</translation>
    </message>
    <message>
        <source>Power off after</source>
        <translation>Apagado automático</translation>
    </message>
</context>
<context>
    <name>PageTimeZone</name>
    <message>
        <source>Time Zone</source>
        <translation>Zona horaria</translation>
    </message>
    <message>
        <source>Local time</source>
        <translation>Hora local</translation>
    </message>
</context>
<context>
    <name>PageUserDetail</name>
    <message>
        <source>Test Records</source>
        <translation>Registros de cribado</translation>
    </message>
</context>
<context>
    <name>PageWifi</name>
    <message>
        <source>Wi-Fi</source>
        <translation>Wi-Fi</translation>
    </message>
    <message>
        <source>Phone setup</source>
        <translation>Config. móvil</translation>
    </message>
</context>
<context>
    <name>PageWithMenu</name>
    <message>
        <source>Settings</source>
        <translation>Ajustes</translation>
    </message>
    <message>
        <source>History</source>
        <translation>Historial</translation>
    </message>
    <message>
        <source>Screening</source>
        <translation>Cribado</translation>
    </message>
    <message>
        <source>Power</source>
        <translation>Apagar</translation>
    </message>
</context>
<context>
    <name>ParentLetter</name>
    <message>
        <source>Sphere (D)</source>
        <translation>Esfera (D)</translation>
    </message>
    <message>
        <source>Cylinder (D)</source>
        <translation>Cilindro (D)</translation>
    </message>
    <message>
        <source>Axis (°)</source>
        <translation>Eje (°)</translation>
    </message>
    <message>
        <source>Right eye (OD)</source>
        <translation>Ojo derecho (OD)</translation>
    </message>
    <message>
        <source>Left eye (OS)</source>
        <translation>Ojo izquierdo (OI)</translation>
    </message>
    <message>
        <source>Pupil distance: %1 mm</source>
        <translation>Distancia pupilar: %1 mm</translation>
    </message>
    <message>
        <source>Vision screening result</source>
        <translation>Resultado del cribado visual</translation>
    </message>
    <message>
        <source>Screened with: %1
Test date: %2</source>
        <translation>Cribado con: %1
Fecha de la prueba: %2</translation>
    </message>
    <message>
        <source>Male</source>
        <translation>Masculino</translation>
    </message>
    <message>
        <source>Female</source>
        <translation>Femenino</translation>
    </message>
    <message>
        <source>Sex: %1    Birthday: %2</source>
        <translation>Sexo: %1    Fecha de nacimiento: %2</translation>
    </message>
    <message>
        <source>Pass</source>
        <translation>Aprobado</translation>
    </message>
    <message>
        <source>Refer</source>
        <translation>Remitir</translation>
    </message>
    <message>
        <source>No result</source>
        <translation>Sin resultado</translation>
    </message>
    <message>
        <source>Result: %1</source>
        <translation>Resultado: %1</translation>
    </message>
    <message>
        <source>The screening found no sign that your child&apos;s eyes need a closer look today. A screening is a quick check, not a diagnosis: it can miss a problem. If your child squints, tilts the head, holds things very close or complains about the eyes, see an eye-care professional.</source>
        <translation>El cribado de hoy no encontró señales de que los ojos de su hijo o hija necesiten un examen más detallado. Un cribado es una comprobación rápida, no un diagnóstico: puede pasar por alto un problema. Si su hijo o hija entrecierra los ojos, inclina la cabeza, se acerca mucho las cosas o se queja de los ojos, consulte a un profesional de la visión.</translation>
    </message>
    <message>
        <source>The screening found values that should be checked. This is not a diagnosis: many children referred turn out to need nothing, and only a full eye examination can tell. Please make an appointment with an eye-care professional (optometrist or ophthalmologist) and bring this letter.</source>
        <translation>El cribado encontró valores que conviene revisar. No es un diagnóstico: muchos niños remitidos no necesitan nada, y solo un examen ocular completo puede decirlo. Pida cita con un profesional de la visión (óptico-optometrista u oftalmólogo) y lleve esta carta.</translation>
    </message>
    <message>
        <source>The screening could not give a result. A screening is not a diagnosis; please have your child screened again or see an eye-care professional.</source>
        <translation>El cribado no pudo dar un resultado. Un cribado no es un diagnóstico; repita el cribado o consulte a un profesional de la visión.</translation>
    </message>
    <message>
        <source>No pupil photo was kept for this test.</source>
        <translation>No se guardó foto de las pupilas de esta prueba.</translation>
    </message>
    <message>
        <source>Pupil photo taken during the test:</source>
        <translation>Foto de las pupilas tomada durante la prueba:</translation>
    </message>
</context>
<context>
    <name>TimeDlg</name>
    <message>
        <source>1 Minute</source>
        <translation>1 minuto</translation>
    </message>
    <message>
        <source>5 Minutes</source>
        <translation>5 minutos</translation>
    </message>
    <message>
        <source>10 Minutes</source>
        <translation>10 minutos</translation>
    </message>
    <message>
        <source>30 Minutes</source>
        <translation>30 minutos</translation>
    </message>
    <message>
        <source>1 Hour</source>
        <translation>1 hora</translation>
    </message>
    <message>
        <source>Never</source>
        <translation>Nunca</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
</context>
<context>
    <name>UploadDlg</name>
    <message>
        <source>Data is processing, Please wait...</source>
        <translation>Procesando los datos, espere...</translation>
    </message>
    <message>
        <source>File is downloading, Please wait...</source>
        <translation>Descargando el archivo, espere...</translation>
    </message>
    <message>
        <source>It is printing, Please wait...</source>
        <translation>Imprimiendo, espere...</translation>
    </message>
    <message>
        <source>Version checking, Please wait...</source>
        <translation>Comprobando la versión, espere...</translation>
    </message>
    <message>
        <source>Sending Result, Please wait...</source>
        <translation>Enviando el resultado, espere...</translation>
    </message>
    <message>
        <source>Mail is Sending, Please wait...</source>
        <translation>Enviando el correo, espere...</translation>
    </message>
</context>
<context>
    <name>WifiPwdDlg</name>
    <message>
        <source>Enter Password</source>
        <translation>Escriba la contraseña</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>Connect</source>
        <translation>Conectar</translation>
    </message>
</context>
<context>
    <name>ZoneDlg</name>
    <message>
        <source>Time Zone</source>
        <translation>Zona horaria</translation>
    </message>
    <message>
        <source>UTC+00: Universal Coordinated Time</source>
        <translation>UTC+00: Tiempo universal coordinado</translation>
    </message>
    <message>
        <source>UTC+01: European Central Time</source>
        <translation>UTC+01: Hora de Europa Central</translation>
    </message>
    <message>
        <source>UTC+02: Eastern European Time</source>
        <translation>UTC+02: Hora de Europa Oriental</translation>
    </message>
    <message>
        <source>UTC+03: Eastern African Time</source>
        <translation>UTC+03: Hora de África Oriental</translation>
    </message>
    <message>
        <source>UTC+04: Near East Time</source>
        <translation>UTC+04: Hora de Oriente Próximo</translation>
    </message>
    <message>
        <source>UTC+05: Pakistan Lahore Time</source>
        <translation>UTC+05: Hora de Pakistán (Lahore)</translation>
    </message>
    <message>
        <source>UTC+5.5: Indian Standard Time</source>
        <translation>UTC+5.5: Hora estándar de la India</translation>
    </message>
    <message>
        <source>UTC+06: Bangladesh Standard Time</source>
        <translation>UTC+06: Hora estándar de Bangladés</translation>
    </message>
    <message>
        <source>UTC+07: Vietnam Standard Time</source>
        <translation>UTC+07: Hora estándar de Vietnam</translation>
    </message>
    <message>
        <source>UTC+08: China Standard Time</source>
        <translation>UTC+08: Hora estándar de China</translation>
    </message>
    <message>
        <source>UTC+09: Japan Standard Time</source>
        <translation>UTC+09: Hora estándar de Japón</translation>
    </message>
    <message>
        <source>UTC+10: Australia Eastern Time</source>
        <translation>UTC+10: Hora del este de Australia</translation>
    </message>
    <message>
        <source>UTC+11: Solomon Standard Time</source>
        <translation>UTC+11: Hora estándar de las Islas Salomón</translation>
    </message>
    <message>
        <source>UTC+12: New Zealand Standard Time</source>
        <translation>UTC+12: Hora estándar de Nueva Zelanda</translation>
    </message>
    <message>
        <source>UTC-01: Central African Time</source>
        <translation>UTC-01: Hora de África Central</translation>
    </message>
    <message>
        <source>UTC-02: Noronha Standard Time</source>
        <translation>UTC-02: Hora estándar de Noronha</translation>
    </message>
    <message>
        <source>UTC-03: Brazil Eastern Time</source>
        <translation>UTC-03: Hora del este de Brasil</translation>
    </message>
    <message>
        <source>UTC-04: Virgin Islands Time</source>
        <translation>UTC-04: Hora de las Islas Vírgenes</translation>
    </message>
    <message>
        <source>UTC-05: Eastern Standard Time</source>
        <translation>UTC-05: Hora estándar del Este</translation>
    </message>
    <message>
        <source>UTC-06: Central Standard Time</source>
        <translation>UTC-06: Hora estándar del Centro</translation>
    </message>
    <message>
        <source>UTC-07: Mountain Standard Time</source>
        <translation>UTC-07: Hora estándar de la Montaña</translation>
    </message>
    <message>
        <source>UTC-08: Pacific Standard Time</source>
        <translation>UTC-08: Hora estándar del Pacífico</translation>
    </message>
    <message>
        <source>UTC-09: Alaska Standard Time</source>
        <translation>UTC-09: Hora estándar de Alaska</translation>
    </message>
    <message>
        <source>UTC-10: Hawaii Standard Time</source>
        <translation>UTC-10: Hora estándar de Hawái</translation>
    </message>
    <message>
        <source>UTC-11: Midway Islands Time</source>
        <translation>UTC-11: Hora de las Islas Midway</translation>
    </message>
</context>
<context>
    <name>versiondlg</name>
    <message>
        <source>Version Switch</source>
        <translation>Cambio de versión</translation>
    </message>
    <message>
        <source>Cancel</source>
        <translation>Cancelar</translation>
    </message>
    <message>
        <source>OK</source>
        <translation>Aceptar</translation>
    </message>
    <message>
        <source>Switch to %1</source>
        <translation>¿Cambiar a %1?</translation>
    </message>
    <message>
        <source>Yes</source>
        <translation>Sí</translation>
    </message>
    <message>
        <source>No</source>
        <translation>No</translation>
    </message>
    <message>
        <source>Version Check Failed!</source>
        <translation>Error al comprobar la versión</translation>
    </message>
    <message>
        <source>System Switch Failed!</source>
        <translation>Error al cambiar de versión</translation>
    </message>
    <message>
        <source>System Switch Success!</source>
        <translation>Versión cambiada correctamente</translation>
    </message>
</context>
</TS>
