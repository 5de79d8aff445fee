<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="en" sourcelanguage="en">
<context>
    <name>BrowserMenus</name>
    <message numerus="yes">
        <source>Forget all %n visited page(s)?</source>
        <translation>
            <numerusform>Forget %n visited page?</numerusform>
            <numerusform>Forget all %n visited pages?</numerusform>
        </translation>
    </message>
</context>
</TS>
