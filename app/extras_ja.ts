<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1">
<context>
    <name>GraphMenu</name>
    <message>
        <source>&amp;Copy</source>
        <translation>コピー(&amp;C)</translation>
    </message>
    <message>
        <source>&amp;Save Picture…</source>
        <translation>図を保存(&amp;S)…</translation>
    </message>
    <message>
        <source>Save &amp;Data…</source>
        <translation>データを保存(&amp;D)…</translation>
    </message>
    <message>
        <source>&amp;Reset Range</source>
        <translation>表示範囲を元に戻す(&amp;R)</translation>
    </message>
    <message>
        <source>Save Picture</source>
        <translation>図を保存</translation>
    </message>
    <message>
        <source>Save Data</source>
        <translation>データを保存</translation>
    </message>
    <message>
        <source>There is nothing in the graph yet.</source>
        <translation>グラフにはまだ何もありません。</translation>
    </message>
    <message>
        <source>The file [%1] is one that is shown: choose another name.</source>
        <translation>ファイル [%1] は表示中のデータのファイルです。別の名前にしてください。</translation>
    </message>
</context>
<context>
    <name>ResultsMenu</name>
    <message>
        <source>Copy All &amp;Results</source>
        <translation>すべての結果をコピー(&amp;R)</translation>
    </message>
</context>
<context>
    <name>StatusWords</name>
    <message>
        <source>Nothing could be read from %1.</source>
        <translation>%1 からは何も読めませんでした。</translation>
    </message>
    <message>
        <source>Written: %1</source>
        <translation>書き込みました: %1</translation>
    </message>
    <message>
        <source>No. %1: mut of the energy before. Press Enter in its energy field.</source>
        <translation>番号 %1: μt は変更前のエネルギーのものです。エネルギーの欄で Enter を押してください。</translation>
    </message>
    <message>
        <source>mut of the Victreen lines before. Click %1 off and on again.</source>
        <translation>μt は変更前のビクトリーン線によるものです。「%1」を外して付け直してください。</translation>
    </message>
    <message>
        <source>Not used yet: %1. Press %2.</source>
        <translation>まだ計算に使われていません: %1。%2 を押してください。</translation>
    </message>
</context>
</TS>
